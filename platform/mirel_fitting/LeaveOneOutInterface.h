#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <vector>

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

/** Ability of a model: how it predicts each of its cases from the others. */
class MIREL_FITTING_EXPORT LeaveOneOutInterface
{
public:
    virtual ~LeaveOneOutInterface();

    /**
     * Rows ascending: all of them, or a random sample where a model of many cases keeps or measures
     * no more (at most 100 000).
     * @throw SurrogateModelInterface::Error like qualityMetricInformation().
     */
    virtual std::vector<LeaveOneOutPrediction> leaveOneOutPredictions(int offset) const = 0;
};
