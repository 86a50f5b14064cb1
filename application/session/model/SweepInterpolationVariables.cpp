#include "session/model/SweepInterpolationVariables.h"

#include "session/cases/CaseCounts.h"
#include "session/text/DecimalText.h"

#include <mirel_datamanagement/Project.h>

#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>

namespace {
/** Evenly spaced values without the rounding errors of their computation, both ends included. */
class EvenValues : public InterpolationVariablesAbstract::DistributedPoints
{
public:
    EvenValues(const SweepInterpolationVariables::Range& range, std::size_t count)
        : DistributedPoints(range, count), range(range)
    {}

    void get(std::vector<double>& values) const override
    {
        const std::size_t first = values.size();
        DistributedPoints::get(values);
        const double scale = std::max(std::abs(range.first), std::abs(range.second));
        for (std::size_t i = first + 1; i < values.size(); ++i) {
            values[i] = i + 1 == values.size() ? range.second : nearbyDecimal(values[i], scale);
        }
    }

private:
    SweepInterpolationVariables::Range range;
};
} // namespace

SweepInterpolationVariables::SweepInterpolationVariables(
    boost::shared_ptr<const SurrogateModelManagerInterface> manager,
    const veska::PropertyAbstract<SurrogateModelUserDistCollection>& userDistributions,
    boost::shared_ptr<const Project> project)
    : InterpolationVariablesAbstract(manager, userDistributions), manager(std::move(manager)),
      project(std::move(project))
{}

SweepInterpolationVariables::~SweepInterpolationVariables() = default;

void SweepInterpolationVariables::sweep(const VarPtr& variable, std::size_t count)
{
    std::map<VarPtr, Sweep> changed = chosenSweeps;
    changed.insert_or_assign(variable, Sweep{count, std::nullopt});
    setSweeps(changed);
}

void SweepInterpolationVariables::stayAtEvaluationPoint(const VarPtr& variable)
{
    if (chosenSweeps.erase(variable) > 0) {
        emitChanged();
    }
}

const std::map<VarPtr, SweepInterpolationVariables::Sweep>&
SweepInterpolationVariables::sweeps() const
{
    return chosenSweeps;
}

void SweepInterpolationVariables::setSweeps(const std::map<VarPtr, Sweep>& sweeps)
{
    if (sweeps != chosenSweeps) {
        chosenSweeps = sweeps;
        emitChanged();
    }
}

void SweepInterpolationVariables::setOutputs(const std::vector<VarPtr>& outputs)
{
    if (outputs != chosenOutputs) {
        chosenOutputs = outputs;
        emitChanged();
    }
}

std::set<VarPtr> SweepInterpolationVariables::dependentVariables() const
{
    return {chosenOutputs.begin(), chosenOutputs.end()};
}

void SweepInterpolationVariables::suspend()
{
    isSuspended = true;
    InterpolationVariablesAbstract::suspend();
}

void SweepInterpolationVariables::resume()
{
    isSuspended = false;
    InterpolationVariablesAbstract::resume();
}

boost::shared_ptr<InterpolationPointsInterface>
SweepInterpolationVariables::interpolationPoints(VarPtr variable) const
{
    const auto found = chosenSweeps.find(variable);
    if (found == chosenSweeps.end()) {
        return nullptr;
    }
    const Sweep& sweep = found->second;
    return boost::make_shared<EvenValues>(sweep.range ? *sweep.range : rangeOf(variable),
                                          sweep.count);
}

SweepInterpolationVariables::Range
SweepInterpolationVariables::rangeOf(const VarPtr& variable) const
{
    return sweepRange(*project, variable,
                      validCases(*project, manager->independentVars()->get(), chosenOutputs,
                                 project->excludedRows()));
}

void SweepInterpolationVariables::emitChanged() const
{
    if (!isSuspended) {
        signalInterpolationVariablesChanged();
    }
}
