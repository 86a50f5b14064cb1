#include <surrogatemodel/InterpolationVariablesAbstract.h>

#include <surrogatemodel/SurrogateModelManagerInterface.h>
#include <surrogatemodel/SurrogateModelUserDist.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_signals/EmitSignal.h>
#include <mirel_signals/SignalConnectionCollection.h>

#include <boost/make_shared.hpp>

#include <stdexcept>

InterpolationVariablesAbstract::DistributedPoints::DistributedPoints(
    const std::pair<double, double>& range, std::size_t count)
    : range(range), count(count)
{}

InterpolationVariablesAbstract::DistributedPoints::~DistributedPoints() = default;

void InterpolationVariablesAbstract::DistributedPoints::get(std::vector<double>& values) const
{
    // For one value the step is infinite or NaN and the value is NaN; for none the unsigned
    // difference wraps around and nothing is made of it.
    const double step = (range.second - range.first) / static_cast<double>(count - 1);
    // Reserved for these values only: vectors are usually empty, and one that is not grows as
    // needed.
    if (values.capacity() < count) {
        values.reserve(count);
    }
    for (std::size_t i = 0; i < count; ++i) {
        values.push_back(range.first + static_cast<double>(i) * step);
    }
}

InterpolationVariablesAbstract::InterpolationVariablesAbstract(
    boost::shared_ptr<const SurrogateModelManagerInterface> modelManager,
    const veska::PropertyAbstract<SurrogateModelUserDistCollection>& distributions)
    : manager(std::move(modelManager)), connections(std::make_unique<SignalConnectionCollection>()),
      userDistributions(distributions)
{
    if (!manager) {
        throw std::invalid_argument(
            "Interpolation variables need a surrogate-model manager, but got a null pointer.");
    }
    const auto forward = [this](const SurrogateModelUserDistCollection&) {
        emitSignal(signalInterpolationVariablesChanged);
    };
    connections->add(userDistributions.connectSignalChanged(forward));
    connections->add(manager->evaluationPoint()->connectSignalChanged(forward));
}

InterpolationVariablesAbstract::~InterpolationVariablesAbstract() = default;

boost::shared_ptr<std::map<VarPtr, std::vector<double>>>
InterpolationVariablesAbstract::inputIndependentVariables() const
{
    const auto inputs = boost::make_shared<std::map<VarPtr, std::vector<double>>>();
    const SurrogateModelUserDistCollection distributions = userDistributions.get();
    const SurrogateModelUserDistCollection evaluationPoint = manager->evaluationPoint()->get();
    const std::vector<VarPtr> independents = manager->independentVars()->get();
    for (const VarPtr& variable : independents) {
        if (const auto points = sweptPoints(variable, distributions)) {
            // In place: a variable that is listed twice has its distributed points appended twice.
            points->get((*inputs)[variable]);
        } else {
            // A text of the evaluation point gives its values whatever its mode.
            std::vector<double> values;
            evaluationPoint.getUserDistributionPoints(variable.lock()->name())->get(values);
            inputs->emplace(variable, std::move(values));
        }
    }
    return inputs;
}

bool InterpolationVariablesAbstract::isVariableEmployed(VarPtr variable) const
{
    return interpolationPoints(variable) != nullptr;
}

void InterpolationVariablesAbstract::suspend()
{
    connections->block();
}

void InterpolationVariablesAbstract::resume()
{
    connections->unblock();
}

/** The points over which `variable` is swept, the user's if there are; null if it is not swept. */
boost::shared_ptr<const InterpolationPointsInterface> InterpolationVariablesAbstract::sweptPoints(
    const VarPtr& variable, const SurrogateModelUserDistCollection& distributions) const
{
    const boost::shared_ptr<const InterpolationPointsInterface> points =
        interpolationPoints(variable);
    if (!points) {
        return points;
    }
    const std::string name = variable.lock()->name();
    if (distributions.getMode(name) != SurrogateModelUserDistCollection::UserDefined) {
        return points;
    }
    return distributions.getUserDistributionPoints(name);
}
