#pragma once

#include <cstddef>

/** A case beside what the other cases say of it. */
struct LeaveOneOutPrediction
{
    std::size_t row; ///< as given to the model, the first is 0
    double output;
    double predicted; ///< by a fit to the other cases; NaN where those do not determine one
    /** Of the difference between the two, the noise of the case included: the standard error of an
     *  observation by the fit to the other cases. NaN where that has none to tell it by. */
    double standardError;
};
