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

    /** What the result of a fit is worth: warnings that name no input, one sentence each. */
    static std::vector<std::string> verdicts(const KrigingFit& fit);
};
