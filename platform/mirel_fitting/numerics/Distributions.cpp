#include <mirel_fitting/numerics/Distributions.h>

#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/numerics/NumberText.h>

#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/students_t.hpp>

#include <algorithm>
#include <cmath>

namespace {

/** The probability above the upper limit of a two-sided interval. */
double upperTail(double level)
{
    return (1.0 - level) / 2.0;
}

} // namespace

double Distributions::studentQuantile(double level, double degreesOfFreedom)
{
    const boost::math::students_t distribution(degreesOfFreedom);
    return boost::math::quantile(boost::math::complement(distribution, upperTail(level)));
}

double Distributions::studentTails(double t, double degreesOfFreedom)
{
    if (std::isinf(t)) {
        return 0.0;
    }
    const boost::math::students_t distribution(degreesOfFreedom);
    return 2.0 * boost::math::cdf(boost::math::complement(distribution, std::fabs(t)));
}

double Distributions::fisherTail(double f, double numeratorDegrees, double denominatorDegrees)
{
    if (std::isinf(f)) {
        return 0.0;
    }
    const boost::math::fisher_f distribution(numeratorDegrees, denominatorDegrees);
    return boost::math::cdf(boost::math::complement(distribution, std::max(f, 0.0)));
}

void Distributions::requireLevel(double level)
{
    if (!(level > 0.0 && level < 1.0)) {
        throw SurrogateModelInterface::Error(
            "The level of an interval has to lie between 0 and 1, not at " +
            NumberText::shortest(level) + ".");
    }
}
