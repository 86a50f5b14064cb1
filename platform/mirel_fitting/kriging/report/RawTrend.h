#pragma once

#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/report/OutputScale.h>
#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <cstddef>
#include <string>
#include <vector>

/** A fitted trend in the units of the inputs and the output. */
class RawTrend
{
public:
    /** The arguments are borrowed for the call. @param coefficients of the standardised output. */
    RawTrend(const KrigingCases& cases, const OutputScale& scale, const KrigingTrend& trend,
             const std::vector<double>& coefficients);

    struct Term
    {
        std::string name; ///< "1", "V1", "V1^2", "V1 V2"
        double coefficient;
        std::vector<std::size_t> factors; ///< positions of the inputs in the name
    };

    /** The expanded polynomial in V1, V2, ...: the terms of the trend, and those of lower order
     *  that the change of inputs brings in. */
    std::vector<Term> terms() const;

    /**
     * The equation in V1, V2, ..., or in V1 - c, with the centre c of the cases, where cancellation
     * in the expanded polynomial would cost more than 1e-9 of the output's range.
     */
    std::string text(double outputRange) const;

private:
    QuadraticBasis basis;           // in all inputs
    std::vector<char> isWritten;    // per term
    std::vector<double> centres;    // per input; 0 for one that does not vary
    std::vector<double> magnitudes; // per input: the largest |V| and |c|
    std::vector<double> centred;    // coefficients of the terms of V - c
    std::vector<double> expanded;   // of the terms of V
    double offset;
};
