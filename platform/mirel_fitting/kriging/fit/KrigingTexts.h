#pragma once

#include <mirel_fitting/kriging/fit/KrigingFit.h>

#include <string>
#include <vector>

/** What users read about a Kriging fit. Numbers in the C locale, whatever the application has set.
 */
class KrigingTexts
{
public:
    static std::string figure(double value, int digits = 8);

    /** A line per input. */
    static std::string lengths(const KrigingReport& report);

    /** A line per figure, then the warnings. */
    static std::string quality(const KrigingFit& fit);

    /**
     * What a user has to know before trusting the fit, a sentence each.
     * @param noiseShare of the output's variance that is taken for noise, 0 to 1.
     */
    static std::vector<std::string> verdicts(const KrigingFit& fit, double noiseShare);
};
