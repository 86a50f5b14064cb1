#include <mirel_fitting/kriging/search/KrigingObjective.h>

#include <cmath>

KrigingObjective::KrigingObjective(const std::shared_ptr<const KrigingData>& data,
                                   const KrigingSearch::Settings& settings)
    : likelihood(data), settings(settings), inputs(data->inputs)
{}

KrigingParameters KrigingObjective::parameters(const std::vector<double>& point) const
{
    KrigingParameters result;
    result.lengths = settings.fixedLengths;
    if (result.lengths.empty()) {
        for (std::size_t k = 0; k < inputs; ++k) {
            result.lengths.push_back(std::exp(point[k]));
        }
    }
    const bool isLeast = point.empty() || settings.isNuggetFixed ||
                         point.back() <= std::log(settings.smallestNugget) / nuggetUnit;
    result.nugget = isLeast ? settings.smallestNugget : std::exp(nuggetUnit * point.back());
    return result;
}

double KrigingObjective::value(const std::vector<double>& point)
{
    if (lastValue && point == lastPoint) {
        return *lastValue;
    }
    ++count;
    const KrigingParameters at = parameters(point);
    nugget = at.nugget;
    lastPoint = point;
    lastValue.reset(); // the likelihood may throw
    lastValue = likelihood.evaluate(at.lengths, at.nugget);
    return *lastValue;
}

bool KrigingObjective::curvature(std::vector<double>& result)
{
    std::vector<double> whole;
    likelihood.averageInformation(whole);
    const std::size_t stride = inputs + 1;
    const std::size_t first = settings.fixedLengths.empty() ? 0 : inputs;
    const std::size_t last = settings.isNuggetFixed ? inputs : stride;
    const auto unit = [&](std::size_t k) { return k == inputs ? nuggetUnit : 1.0; };
    result.clear();
    for (std::size_t i = first; i < last; ++i) {
        for (std::size_t j = first; j < last; ++j) {
            result.push_back(unit(i) * unit(j) * whole[i * stride + j]);
        }
    }
    return true;
}

void KrigingObjective::gradient(std::vector<double>& result)
{
    lastValue.reset(); // one gradient per evaluation
    likelihood.gradient(result);
    result.back() *= nuggetUnit;
    if (settings.isNuggetFixed) {
        result.pop_back();
    }
    if (!settings.fixedLengths.empty()) {
        result.erase(result.begin(), result.begin() + static_cast<std::ptrdiff_t>(inputs));
    }
    noise = nugget * likelihood.processVariance();
}
