#pragma once

#include <mirel_fitting/cases/CaseRanges.h>
#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>

#include <cstddef>
#include <optional>
#include <vector>

/**
 * Whether the cases support predictions at a point, judged by all inputs together: by the share
 * that they leave of the variance of a process with a constant mean, the same for every output and
 * as smooth as the prior of the lengths expects. The estimated lengths do not show it: where one
 * input follows from others, the output can be explained without it, and off their relation the
 * model is certain all the same.
 *
 * A point is supported that is left no more than the case which the others support least, but for a
 * tenth. With few cases that share is large everywhere. A point is therefore not supported, either,
 * whose leverage in a linear regression is more than four times the largest of the cases, as it is
 * off a relation that the inputs of all cases keep. From more than 300 points so many that are
 * spread over all of them stand for all: a point costs 300^2 multiplications, so that of many
 * points a random sample is judged.
 */
class KrigingSupport
{
public:
    /** These take 0.06 s given 300 cases, and a share of them is known to half a hundredth. */
    static constexpr std::size_t maxPoints = 10000;

    /** @param ranges of the same cases, borrowed for life. */
    KrigingSupport(const KrigingCases& cases, const CaseRanges& ranges);

    /** One flag per point, 1 if it is not supported; values beyond a range count as its end. Of
     * more than maxPoints so many at random are judged, always the same, and the others have
     *  CaseRanges::notJudged.
     *  @param points as for KrigingPredictor. */
    std::vector<char> unsupported(const std::vector<double*>& points, std::size_t count) const;

private:
    void addLeverage(const KrigingData& data);
    double leverage(std::vector<double>& coordinates) const;

    const CaseRanges& ranges;
    std::optional<KrigingPredictor> process; // none without inputs or other cases to judge by
    double largestError = 0.0;               // that is supported
    std::vector<double> means;               // of the scaled inputs
    std::vector<double> factor;              // lower, of their covariance, by columns
    double largestLeverage = 0.0;            // that is supported; 0: not judged
};
