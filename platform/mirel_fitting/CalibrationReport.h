#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <functional>
#include <vector>

/** How the width of prediction intervals was found; coverage of left-out cases by Student's t. */
struct MIREL_FITTING_EXPORT CalibrationReport
{
    /** What the width was found from. */
    enum class Basis
    {
        Distribution, ///< Student's t alone, or what the model says: few cases
        LeaveOneOut,  ///< residuals of single cases left out, with the parameters of all cases
        Refits        ///< residuals of cases left out together, with parameters of the others
    };

    Basis basis = Basis::Distribution; ///< of `factor`
    /** Half the width of a 95 % interval over that by Student's t. */
    double factor = 1.0;
    std::size_t cases = 0; ///< that were left out and predicted

    /** How many left-out cases an interval held. */
    struct Coverage
    {
        double level; ///< of the interval, such as 0.95
        double share; ///< the fraction of the cases inside of it
    };
    /** Of 50, 80, 95, 99 % intervals by Student's t; calibrated ones hold their level by design. */
    std::vector<Coverage> coverage;

    /**
     * @param magnitudes one per left-out case: |residual / its standard error|.
     * @param quantile   of a level: half the width of its interval in standard errors.
     */
    void addCoverage(const std::vector<double>& magnitudes,
                     const std::function<double(double)>& quantile);
};
