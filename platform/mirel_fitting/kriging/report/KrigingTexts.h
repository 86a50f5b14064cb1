#pragma once

#include <mirel_fitting/kriging/report/KrigingFit.h>
#include <mirel_fitting/numerics/InputNames.h>

#include <string>
#include <vector>

/** Texts about a Kriging fit for users. Numbers are written in the C locale. */
class KrigingTexts
{
public:
    /** A line per input. */
    static std::string lengths(const KrigingReport& report);

    /** All warnings of a fit, a sentence each. */
    static std::vector<std::string> warnings(const KrigingFit& fit,
                                             const InputNames& names = InputNames());

    /** A line per figure, then the warnings. */
    static std::string quality(const KrigingFit& fit);

    /** Whether this fraction of the output's variance is more than half of it. */
    static bool isMostlyNoise(double noiseShare);

    /**
     * What the result of a fit is worth: warnings that name no input, one sentence each.
     * @param noiseShare fraction of the output's variance that the model attributes to noise.
     */
    static std::vector<std::string> verdicts(const KrigingFit& fit, double noiseShare);
};
