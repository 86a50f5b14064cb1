#pragma once

#include <mirel_fitting/kriging/fit/KrigingFitInput.h>
#include <mirel_fitting/kriging/report/KrigingFit.h>
#include <mirel_fitting/numerics/IntervalCalibration.h>

/**
 * Half the width of a fit's prediction intervals in standard errors, from cases that are left out:
 * up to 2000 points by refits to four fifths of them, since leave-one-out with the parameters of
 * all cases is optimistic, beyond by leave-one-out.
 * @param fit of `input`.
 * @throw SurrogateModelInterface::Error like KrigingSearch::run().
 */
IntervalCalibration calibrateIntervals(const KrigingFitInput& input, const KrigingFit& fit);
