#pragma once

#include <mirel_fitting/kriging/fit/DistinctCases.h>
#include <mirel_fitting/kriging/fit/KrigingFitInput.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/report/KrigingFit.h>

#include <memory>
#include <vector>

/** Fits without correlation, R is the identity: where nothing varies, or the trend explains all. */
class UncorrelatedKriging
{
public:
    /** The mean of the output, where no input varies or the output does not. */
    static KrigingFit ofMean(const KrigingFitInput& input);

    /** Whether the trend, of all cases or a subset, leaves only rounding at all cases. */
    static bool isExplained(const KrigingFitInput& input, const DistinctCases& distinct,
                            const KrigingTrend& trend, const std::vector<double>& coefficients);

    /** The trend alone, which passes through all cases.
     *  @param data all cases, with the terms of `trend`. */
    static KrigingFit ofTrend(const KrigingFitInput& input, const DistinctCases& distinct,
                              const std::shared_ptr<const KrigingTrend>& trend,
                              const std::shared_ptr<const KrigingData>& data);
};
