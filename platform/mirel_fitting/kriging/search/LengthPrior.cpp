#include <mirel_fitting/kriging/search/LengthPrior.h>

#include <cmath>

double LengthPrior::value(double logLength) const
{
    const double distance = logLength - std::log(policy.priorLength);
    return -0.5 * distance * distance * curvature(logLength);
}

double LengthPrior::slope(double logLength) const
{
    return -(logLength - std::log(policy.priorLength)) * curvature(logLength);
}

double LengthPrior::curvature(double logLength) const
{
    const double deviation = logLength < std::log(policy.priorLength) ? policy.priorDeviationBelow
                                                                      : policy.priorDeviationAbove;
    return 1.0 / (deviation * deviation);
}
