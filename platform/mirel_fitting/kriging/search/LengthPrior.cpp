#include <mirel_fitting/kriging/search/LengthPrior.h>

#include <algorithm>
#include <cmath>

LengthPrior::LengthPrior(const SearchPolicy& policy, double spacing)
    : policy(policy), centre(std::log(std::min(policy.priorLength, policy.priorSpacings * spacing)))
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
        logLength < centre ? policy.priorDeviationBelow : policy.priorDeviationAbove;
    return 1.0 / (deviation * deviation);
}
