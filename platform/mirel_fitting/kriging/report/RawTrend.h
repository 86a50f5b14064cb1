#pragma once

#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/report/OutputScale.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/** A fitted trend in the units of the inputs and the output. */
class RawTrend
{
public:
    /** @param cases, trend, coefficients are borrowed for life. */
    RawTrend(const KrigingCases& cases, const OutputScale& scale, const KrigingTrend& trend,
             const std::vector<double>& coefficients);

    /** The expanded polynomial in V1, V2, .... */
    std::vector<KrigingTrend::RawTerm> terms() const;

    /**
     * The equation in V1, V2, ..., or in V1 - c, with the centre c of the cases, where cancellation
     * in the expanded polynomial would cost more than 1e-9 of the output's range.
     */
    std::string text(double outputRange) const;

    /** The number k in "Vk" of each input that varies. */
    static std::vector<std::size_t> inputNumbers(const KrigingCases& cases);

private:
    double centre(std::size_t k) const;
    std::vector<double> centres() const;
    std::map<std::string, double> centredTerms() const;
    double roundingOfExpanded(const std::map<std::string, double>& centred) const;

    const KrigingCases& cases;
    OutputScale scale;
    const KrigingTrend& trend;
    const std::vector<double>& coefficients;
};
