#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/fit/KrigingFitInput.h>
#include <mirel_fitting/kriging/report/KrigingFit.h>

#include <cstddef>
#include <string>
#include <vector>

/** The distinct cases of a fit: replicates are merged, the output is standardised. */
class DistinctCases
{
public:
    /** Appends warnings of repeated cases, and of near ones that contradict each other.
     *  @param input is borrowed for life. */
    DistinctCases(const KrigingFitInput& input, std::vector<std::string>& warnings);

    /** Without trend. With a fixed nugget the mean of replicates counts as a single case. */
    const KrigingData& data() const { return merged; }

    /** Root mean square deviation of the replicates of a point from their mean. */
    double withinDeviation(std::size_t point) const;

    /** Adds a warning if replicates differ: a note where the model smooths them, as it should.
     *  @param interpolates whether the model passes through their mean. */
    void warnOfConflicts(bool interpolates, KrigingFit& fit) const;

    /**
     * Adds the error metrics and leave-one-out predictions of a fit.
     * @param fitted    the data of all cases as the fit has used them.
     * @param residuals at leftOut.points.
     */
    void addErrors(KrigingFit& fit, const KrigingData& fitted, const std::vector<double>& residuals,
                   const KrigingLeaveOneOut::Points& leftOut) const;

private:
    const KrigingFitInput& input;
    KrigingData merged;
    std::vector<double> replicates; // all that count, even if the fit uses their mean only
    std::vector<double> withinSquares;
    std::size_t conflicts; // points whose replicates differ
};
