#include <mirel_fitting/kriging/search/LengthPrior.h>

#include <mirel_fitting/kriging/search/SearchPolicy.h>

#include <algorithm>
#include <cmath>

LengthPrior::LengthPrior(double spacing)
    : centre(std::log(std::min(SearchPolicy::priorLength, SearchPolicy::priorSpacings * spacing)))
{}

double LengthPrior::value(double logLength) const
{
    const double distance = logLength - centre;
    return -0.5 * distance * distance * curvature(logLength);
}

double LengthPrior::slope(double logLength) const
{
    return -(logLength - centre) * curvature(logLength);
}

double LengthPrior::curvature(double logLength) const
{
    const double deviation =
        logLength < centre ? SearchPolicy::priorDeviationBelow : SearchPolicy::priorDeviationAbove;
    return 1.0 / (deviation * deviation);
}
