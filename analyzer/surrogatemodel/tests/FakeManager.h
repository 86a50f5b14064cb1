#pragma once

#include <surrogatemodel/SurrogateModelManagerInterface.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_fitting/SurrogateModelInterface.h>
#include <property/Property.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

/** A model that answers what a test puts in and remembers what it was asked. */
class FakeModel : public virtual SurrogateModelInterface
{
public:
    void activateDependentVariables(const std::set<int>& offsets) override
    {
        if (onActivate) {
            onActivate();
        }
        activated.push_back(offsets);
    }

    /** Each result is the dependent's offset plus the sum of the inputs. */
    void interpolateDependentValues(const std::vector<double*>& inputs,
                                    const std::set<int>& offsets, std::vector<double*>& outputs,
                                    std::size_t count) const override
    {
        interpolatedCounts.push_back(count);
        lastInputs = inputs;
        lastOutputs = outputs;
        auto output = outputs.begin();
        for (const int offset : offsets) {
            for (std::size_t row = 0; row < count; ++row) {
                double sum = offset;
                for (const double* input : inputs) {
                    sum += input[row];
                }
                (*output)[row] = sum;
            }
            ++output;
        }
    }

    bool surfaceCoefficientInformationAvailable() const override { return available; }
    bool qualityMetricInformationAvailable() const override { return available; }

    /** @throw Error for an offset that has no text. */
    std::string surfaceCoefficientInformation(int offset) const override
    {
        const auto text = equations.find(offset);
        if (text == equations.end()) {
            throw Error("No equation for offset " + std::to_string(offset) + ".");
        }
        return text->second;
    }

    std::string qualityMetricInformation(int) const override { return "quality"; }

    std::function<void()> onActivate;
    bool available = true;
    std::map<int, std::string> equations;
    std::vector<std::set<int>> activated;
    mutable std::vector<std::size_t> interpolatedCounts;
    mutable std::vector<double*> lastInputs;
    mutable std::vector<double*> lastOutputs;
};

/**
 * A manager of one model that is never fitted. Its settings are plain properties, which a test may
 * replace before it hands the manager out. It runs `onModel`, which may throw, whenever it is asked
 * for a model by offsets.
 */
class FakeManager : public SurrogateModelManagerInterface
{
public:
    using Independents = veska::PropertyAbstract<std::vector<VarPtr>>;
    using Type = veska::PropertyAbstract<ModelType>;
    using EvaluationPoint = veska::PropertyAbstract<SurrogateModelUserDistCollection>;

    SurrogateModelInterface& model(const std::set<VarPtr>& dependents) const override
    {
        requests.push_back(dependents);
        if (!failure.empty()) {
            throw SurrogateModelInterface::Error(failure);
        }
        return fakeModel;
    }

    SurrogateModelInterface& model(const std::set<int>& dependentOffsets) const override
    {
        if (onModel) {
            onModel();
        }
        offsetRequests.push_back(dependentOffsets);
        if (!failure.empty()) {
            throw SurrogateModelInterface::Error(failure);
        }
        return fakeModel;
    }

    boost::shared_ptr<Independents> independentVars() const override { return independents; }
    boost::shared_ptr<Type> type() const override { return modelType; }
    boost::shared_ptr<EvaluationPoint> evaluationPoint() const override { return point; }

    bool isVariableInSurrogateModel(VarPtr variable) const override
    {
        const std::vector<VarPtr> listed = independents->get();
        return std::find(listed.begin(), listed.end(), variable) != listed.end();
    }

    std::size_t offsetForVariableName(const std::string& name) const override
    {
        const auto offset = offsets.find(name);
        return offset == offsets.end() ? 0 : offset->second;
    }

    boost::shared_ptr<Independents> independents =
        boost::make_shared<veska::Property<std::vector<VarPtr>>>();
    boost::shared_ptr<Type> modelType = boost::make_shared<veska::Property<ModelType>>();
    boost::shared_ptr<EvaluationPoint> point =
        boost::make_shared<veska::Property<SurrogateModelUserDistCollection>>();

    /** By variable name; other names answer 0. */
    std::map<std::string, std::size_t> offsets;

    /** Not empty: what model() throws, as SurrogateModelInterface::Error. */
    std::string failure;

    std::function<void()> onModel;
    mutable FakeModel fakeModel;
    mutable std::vector<std::set<VarPtr>> requests;
    mutable std::vector<std::set<int>> offsetRequests;
};
