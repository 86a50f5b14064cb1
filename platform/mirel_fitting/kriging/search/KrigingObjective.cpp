#include <mirel_fitting/kriging/search/KrigingObjective.h>

#include <mirel_fitting/kriging/search/SearchPolicy.h>

KrigingObjective::KrigingObjective(const std::shared_ptr<const KrigingData>& data,
                                   const KrigingSearchVariables& variables)
    : likelihood(data), variables(variables), prior(variables.spacing()), inputs(data->inputs)
{}

double KrigingObjective::value(const std::vector<double>& point)
{
    if (lastValue && point == lastPoint) {
        return *lastValue;
    }
    ++count;
    const KrigingParameters at = variables.parameters(point);
    lastPoint = point;
    lastValue.reset(); // the likelihood may throw
    lastValue = likelihood.evaluate(at.lengths, at.nugget) + logPrior(point);
    return *lastValue;
}

double KrigingObjective::logPrior(const std::vector<double>& point) const
{
    double sum = 0.0;
    for (std::size_t k = 0; k < variables.lengthCount(); ++k) {
        sum += prior.value(point[k]);
    }
    return sum;
}

double KrigingObjective::logLikelihood(const std::vector<double>& point)
{
    return value(point) - logPrior(point);
}

void KrigingObjective::curvature(std::vector<double>& result)
{
    std::vector<double> whole; // of all lengths and the nugget
    likelihood.averageInformation(whole);
    const std::size_t stride = inputs + 1;
    const std::size_t first = inputs - variables.lengthCount();
    const std::size_t last = variables.hasNugget() ? stride : inputs;
    const auto unit = [&](std::size_t k) { return k == inputs ? SearchPolicy::nuggetUnit : 1.0; };
    result.clear();
    for (std::size_t i = first; i < last; ++i) {
        for (std::size_t j = first; j < last; ++j) {
            result.push_back(unit(i) * unit(j) * whole[i * stride + j]);
        }
    }
    for (std::size_t k = 0; k < variables.lengthCount(); ++k) {
        result[k * variables.size() + k] += prior.curvature(lastPoint[k]);
    }
}

void KrigingObjective::gradient(std::vector<double>& result)
{
    lastValue.reset(); // one gradient per evaluation
    likelihood.gradient(result);
    result.back() *= SearchPolicy::nuggetUnit;
    if (!variables.hasNugget()) {
        result.pop_back();
    }
    if (variables.lengthCount() == 0) {
        result.erase(result.begin(), result.begin() + static_cast<std::ptrdiff_t>(inputs));
    }
    for (std::size_t k = 0; k < variables.lengthCount(); ++k) {
        result[k] += prior.slope(lastPoint[k]);
    }
}

double KrigingObjective::noiseVariance(const std::vector<double>& point)
{
    value(point);
    return variables.parameters(point).nugget * likelihood.processVariance();
}
