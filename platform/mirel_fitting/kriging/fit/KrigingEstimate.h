#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/fit/KrigingFitInput.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/search/KrigingSearchSettings.h>

#include <memory>

/**
 * Trend, correlation lengths and nugget by the criterion of KrigingObjective, for cases that one
 * correlation matrix can hold. Of many of these, lengths and nugget come from a subset.
 */
class KrigingEstimate
{
public:
    /**
     * Reports to FitProgress.
     * @param input is borrowed for life.
     * @param trend of the highest order; becomes constant where cases are few and the output is
     *              smooth.
     * @param data  all cases, with the terms of `trend`; may be changed.
     * @throw SurrogateModelInterface::Error like KrigingSearch::run().
     */
    KrigingEstimate(const KrigingFitInput& input, std::shared_ptr<const KrigingTrend> trend,
                    std::shared_ptr<KrigingData> data);

    const std::shared_ptr<const KrigingTrend>& trend() const { return chosenTrend; }

    /** All cases, with the terms of trend(); replicates are averaged if they differ by less than
     *  the least nugget explains. */
    std::shared_ptr<const KrigingData> data() const { return allCases; }

    const KrigingSearchResult& result() const { return found; }

    /** Adds warnings about subset, trend and nugget. */
    void warn(KrigingFit& fit) const;

    /**
     * Whether replicates differ by less than the least nugget explains, for example by rounding.
     * Their likelihood then favours an ever smaller process variance and lengths that do not fit
     * the points: the mean of replicates is to be used as a single case.
     */
    static bool isPureErrorNegligible(const KrigingFitInput& input, const KrigingData& data,
                                      const KrigingSearchResult& found);

    /** Whether lengths and nugget of this number of cases are estimated from a subset. */
    static bool usesSubset(const KrigingSizes& sizes, std::size_t cases);

private:
    void search();
    void searchWithAll();
    void lowerTrend(int order);

    const KrigingFitInput& input;
    std::shared_ptr<const KrigingTrend> chosenTrend;
    std::shared_ptr<KrigingData> allCases;
    bool isSmooth = false; // the trend is constant for that reason
    KrigingSearchResult found;
};
