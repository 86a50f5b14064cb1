#pragma once

#include <mirel_fitting/Export.h>
#include <mirel_fitting/OutputTransform.h>

#include <functional>
#include <limits>
#include <vector>

/**
 * Which power of a positive output a model describes best: the profile likelihood of
 * y(l) = (y^l - 1) / (l m^(l - 1)), m the geometric mean, which is m ln y for l = 0. So scaled, the
 * likelihoods of all powers are in the output's units.
 * Box, Cox: An analysis of transformations, J. R. Stat. Soc. B 26 (1964).
 */
struct MIREL_FITTING_EXPORT BoxCoxProfile
{
    static constexpr double largestPower = 2.0; ///< powers from minus this to this are tried

    double power = std::numeric_limits<double>::quiet_NaN(); ///< of greatest likelihood, |l| <= 2
    /** The powers in between have a log-likelihood at most 1.92 lower, half the 95 % point of
     *  chi-squared with one degree of freedom; ends at -2 or 2 where these have, too. */
    double lower = -largestPower;
    double upper = largestPower; ///< likewise
    /** The customary power: none (1) if it is between the limits, else the one of square root (1/2)
     *  and logarithm (0) that is between them and nearest to the greatest likelihood, else the
     *  nearest of all three. */
    OutputTransform transform = OutputTransform::None;
    bool isBetweenLimits = false; ///< whether the customary power is

    /** The log-likelihoods of models of these outputs, one each; as many values as there are cases.
     */
    using Likelihood =
        std::function<std::vector<double>(const std::vector<std::vector<double>>& outputs)>;

    /** Of an output that is positive in all cases, at least one. What `likelihood` throws passes
     *  through. */
    static BoxCoxProfile of(const std::vector<double>& output, const Likelihood& likelihood);
};
