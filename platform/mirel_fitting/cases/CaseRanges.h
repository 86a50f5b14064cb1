#pragma once

#include <mirel_fitting/Extrapolation.h>
#include <mirel_fitting/PredictorDescription.h>
#include <mirel_fitting/numerics/InputNames.h>

#include <cstddef>
#include <vector>

/** The ranges of the inputs over the cases: what is behind PredictiveModel. */
class CaseRanges
{
public:
    /** @param columns one array of `rows` finite values per input, borrowed for the call. */
    CaseRanges(const std::vector<double*>& columns, std::size_t rows);

    /** From what ranges() returned. */
    explicit CaseRanges(const std::vector<PredictorDescription::InputRange>& ranges);

    std::vector<PredictorDescription::InputRange> ranges() const;

    /** See PredictiveModel::extrapolations(). */
    std::vector<double> distances(const std::vector<double*>& points, std::size_t count) const;

    /** The values of one input, those beyond its range moved to its end; NaN stays.
     *  @param clamped receives `count` values; may be `values` itself. */
    void clamp(std::size_t input, const double* values, std::size_t count, double* clamped) const;

    static constexpr char notJudged = 2;

    /**
     * See PredictiveModel::extrapolation().
     * @param isUnsupported one flag per point: 1 where no case supports the combination of its
     *                      values, be they in their ranges or not, 0 where one does, notJudged
     *                      where the points that are judged, a random sample, stand for it. Empty:
     *                      each is supported.
     */
    Extrapolation extrapolation(const std::vector<double*>& points, std::size_t count,
                                const InputNames& names = InputNames(),
                                const std::vector<char>& isUnsupported = {}) const;

    /** See PredictiveModel::outsideCases(). @param isUnsupported one flag per point, as above. */
    std::vector<char> outside(const std::vector<double*>& points, std::size_t count,
                              std::vector<char> isUnsupported) const;

private:
    double distance(std::size_t input, double value) const;
    bool isWorthAWarning(std::size_t input, double value, double distance) const;

    std::vector<double> minima;
    std::vector<double> maxima;
    std::vector<bool> isConstant; // up to rounding
};
