#pragma once

#include "FakeManager.h"

#include <surrogatemodel/SurrogateModelFactory.h>

#include <boost/weak_ptr.hpp>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

/** What a factory was asked to fit. */
struct RecordedFit
{
    SurrogateModelManagerInterface::ModelType type;
    std::vector<std::vector<double>> inputs;
    std::vector<std::vector<double>> outputs;
    int rowCount;
};

/**
 * Makes models that are never fitted: each one's equation is "model" and the number of fits so far.
 * A test may have it hand out a finished model instead, which needs no cases.
 */
class RecordingFactory : public SurrogateModelFactory
{
public:
    using SurrogateModelFactory::emitChanged;

    boost::shared_ptr<SurrogateModelInterface> makeModel(ModelType type,
                                                         const std::vector<double*>& inputs,
                                                         const std::vector<double*>& outputs,
                                                         int rowCount) const override
    {
        if (finished) {
            return finished;
        }
        fits.push_back({type, copies(inputs, rowCount), copies(outputs, rowCount), rowCount});
        if (onMake) {
            onMake();
        }
        const auto model = boost::make_shared<FakeModel>();
        model->equations[0] = "model " + std::to_string(fits.size());
        made.push_back(model);
        mostAlive = std::max(mostAlive, alive());
        return model;
    }

    bool needsCases() const override { return !finished; }

    /** How many of the models that it made exist. */
    std::ptrdiff_t alive() const
    {
        return std::count_if(made.begin(), made.end(),
                             [](const auto& model) { return !model.expired(); });
    }

    boost::shared_ptr<SurrogateModelInterface> finished;
    /** Runs before each model is made; may throw. */
    std::function<void()> onMake;
    mutable std::vector<RecordedFit> fits;
    mutable std::ptrdiff_t mostAlive = 0;

private:
    static std::vector<std::vector<double>> copies(const std::vector<double*>& columns,
                                                   int rowCount)
    {
        std::vector<std::vector<double>> result;
        for (const double* column : columns) {
            result.emplace_back(column, column + rowCount);
        }
        return result;
    }

    mutable std::vector<boost::weak_ptr<FakeModel>> made;
};
