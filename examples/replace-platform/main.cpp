// A host whose own fitting class takes the place of the library's Kriging: the manager, its cache,
// undo and the evaluation tables work with it as with the models that come with the library.
#include <surrogatemodel/InterpolationVariablesAbstract.h>
#include <surrogatemodel/SurrogateModelFactory.h>
#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/ProjectDataPipelineManager.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <property/Property.h>

#include <boost/make_shared.hpp>

#include <vtkTable.h>
#include <vtkVariant.h>

#include <cmath>
#include <iostream>

namespace {

/** Inverse-distance weighting: the mean of the cases, weighted by 1 / distance^power.
 *  Shepard: A two-dimensional interpolation function for irregularly-spaced data, ACM 1968. */
class InverseDistanceModel : public SurrogateModelInterface
{
public:
    InverseDistanceModel(const std::vector<double*>& independentColumns,
                         const std::vector<double*>& dependentColumns, std::size_t rowCount,
                         double power)
        : power(power)
    {
        // The columns are borrowed for the call only.
        for (const double* const column : independentColumns) {
            inputs.emplace_back(column, column + rowCount);
        }
        for (const double* const column : dependentColumns) {
            outputs.emplace_back(column, column + rowCount);
        }
    }

    void activateDependentVariables(const std::set<int>& offsets) override
    {
        for (const int offset : offsets) {
            for (const double value : outputs.at(static_cast<std::size_t>(offset))) {
                if (!std::isfinite(value)) {
                    throw Error("Output " + std::to_string(offset) + " has a missing value.");
                }
            }
        }
    }

    void interpolateDependentValues(const std::vector<double*>& points,
                                    const std::set<int>& offsets, std::vector<double*>& values,
                                    std::size_t count) const override
    {
        std::size_t place = 0;
        for (const int offset : offsets) {
            for (std::size_t point = 0; point < count; ++point) {
                values[place][point] = valueAt(points, point, outputs[offset]);
            }
            ++place;
        }
    }

    bool surfaceCoefficientInformationAvailable() const override { return false; }
    bool qualityMetricInformationAvailable() const override { return false; }
    std::string surfaceCoefficientInformation(int) const override { return {}; }
    std::string qualityMetricInformation(int) const override { return {}; }

private:
    double valueAt(const std::vector<double*>& points, std::size_t point,
                   const std::vector<double>& output) const
    {
        double sum = 0.0;
        double weights = 0.0;
        for (std::size_t row = 0; row < output.size(); ++row) {
            double squares = 0.0;
            for (std::size_t input = 0; input < inputs.size(); ++input) {
                squares += std::pow(points[input][point] - inputs[input][row], 2.0);
            }
            if (squares == 0.0) {
                return output[row];
            }
            const double weight = std::pow(squares, -0.5 * power);
            sum += weight * output[row];
            weights += weight;
        }
        return sum / weights;
    }

    double power;
    std::vector<std::vector<double>> inputs;
    std::vector<std::vector<double>> outputs;
};

/** The library's response surfaces, and models of our own where it would make Kriging ones. */
class InverseDistanceFactory : public SurrogateModelFactory
{
public:
    InverseDistanceFactory()
    {
        power->set(2.0);
        power->connectSignalChanged(
            [this](double) { emitChanged(SurrogateModelManagerInterface::Kriging); });
    }

    boost::shared_ptr<SurrogateModelInterface>
    makeModel(ModelType type, const std::vector<double*>& independentColumns,
              const std::vector<double*>& dependentColumns, int rowCount) const override
    {
        if (type != SurrogateModelManagerInterface::Kriging) {
            return SurrogateModelFactory::makeModel(type, independentColumns, dependentColumns,
                                                    rowCount);
        }
        return boost::make_shared<InverseDistanceModel>(
            independentColumns, dependentColumns, static_cast<std::size_t>(rowCount), power->get());
    }

    /** A change discards the manager's model. */
    const boost::shared_ptr<veska::Property<double>> power =
        boost::make_shared<veska::Property<double>>();
};

/** One input swept over its range at five values. */
class OneInputSwept : public InterpolationVariablesAbstract
{
public:
    OneInputSwept(boost::shared_ptr<const SurrogateModelManagerInterface> manager,
                  const veska::PropertyAbstract<SurrogateModelUserDistCollection>& distributions,
                  VarPtr swept, VarPtr wanted)
        : InterpolationVariablesAbstract(manager, distributions), swept(swept), wanted(wanted)
    {}

    std::set<VarPtr> dependentVariables() const override { return {wanted}; }

protected:
    boost::shared_ptr<InterpolationPointsInterface>
    interpolationPoints(VarPtr variable) const override
    {
        if (variable != swept) {
            return nullptr;
        }
        return boost::make_shared<DistributedPoints>(variable.lock()->range(), 5);
    }

private:
    VarPtr swept;
    VarPtr wanted;
};

void print(SurrogateModelQueryToTable& filter)
{
    filter.Update();
    vtkTable* const table = filter.GetOutput();
    for (vtkIdType row = 0; row < table->GetNumberOfRows(); ++row) {
        std::cout << table->GetValue(row, 0).ToDouble() << "  "
                  << table->GetValue(row, 1).ToDouble() << '\n';
    }
}

} // namespace

int main()
{
    auto project = boost::make_shared<Project>();
    const VarPtr angle =
        project->addNumericVariable("angle", Variable::Independent, {0, 4, 9, 16, 20});
    const VarPtr lift = project->addNumericVariable("lift", Variable::Dependent, {0, 4, 8, 12, 13});
    Project::setProject(project);

    const auto factory = boost::make_shared<InverseDistanceFactory>();
    const auto manager = boost::make_shared<SurrogateModelManager>(
        boost::make_shared<ProjectDataPipelineManager>(project), factory);
    manager->independentVars()->set({angle});
    manager->type()->set(SurrogateModelManagerInterface::Kriging);

    const veska::Property<SurrogateModelUserDistCollection> distributions;
    const auto sweep = boost::make_shared<OneInputSwept>(manager, distributions, angle, lift);
    const auto filter = SurrogateModelQueryToTable::New(manager, sweep);

    std::cout << "Inverse distance, power 2\n";
    print(*filter);
    factory->power->set(6.0);
    std::cout << "Power 6\n";
    print(*filter);
    manager->type()->set(SurrogateModelManagerInterface::ResponseSurface);
    std::cout << "The library's response surface\n";
    print(*filter);
    return filter->getLastError().empty() ? 0 : 1;
}
