#pragma once

#include <mirel_fitting/kriging/search/KrigingTrendChoice.h>

#include <cstddef>
#include <string>
#include <vector>

/** Sentences on what a fit makes of its cases and options. What its result looks like is judged by
 *  KrigingTexts. */
class KrigingWarnings
{
public:
    /** The order of a trend that was lowered since a higher one does not predict better. */
    struct Lowered
    {
        int from = 0;
        int to = 0;
        KrigingTrendChoice::Quality after;  ///< in the output's units
        KrigingTrendChoice::Quality before; ///< with the trend asked for
    };

    /** @param input counted from 0. */
    static std::string ofConstantInput(std::size_t input);

    /** @param areMerged into one case each, or else count as measured again. */
    static std::string ofCopies(std::size_t copies, bool areMerged);

    /** Cases next to each other that contradict each other. */
    static std::string ofNearCases(std::size_t places);

    /** Cases at the same point with different outputs. */
    static std::string ofConflicts(std::size_t points, bool meetsCases);

    static std::string ofLoweredTrend(const Lowered& lowered, std::size_t cases);
    static std::string ofTooFewCases(int from, int to, std::size_t cases);
    static std::string ofDroppedTerms(const std::vector<std::string>& names);
    static std::string ofRaisedNugget(double nugget);

    /**
     * Lengths of a part of the cases, which are too many.
     * @param most      cases that all are searched with.
     * @param isRefined by steps with all of them.
     */
    static std::string ofSubset(std::size_t most, std::size_t searched, bool isRefined);

    /** Errors at a part of the cases. */
    static std::string ofSample(std::size_t cases);
};
