#pragma once

#include <cstddef>

/** A case and its prediction by a fit to all other cases. */
struct LeaveOneOutPrediction
{
    std::size_t row;  ///< as given to the model, the first is 0
    double output;    ///< of the case, as given
    double predicted; ///< NaN where the other cases do not determine a fit
    /** Standard error of an observation by the fit to the other cases: that of output - predicted.
     *  NaN where that fit has no residual degree of freedom. */
    double standardError;
    /** What the case's block adds to the prediction at its inputs by the fit to all cases. */
    double blockEffect = 0.0;
};
