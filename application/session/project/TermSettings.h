#pragma once

#include <mirel_fitting/PolynomialTerms.h>

/** Which terms a response surface is to have. */
struct TermSettings
{
    PolynomialTerms polynomial = PolynomialTerms::Quadratic;
    bool areSelected = false; ///< whether only those stay that lower AICc, for each output

    bool operator==(const TermSettings& other) const
    {
        return polynomial == other.polynomial && areSelected == other.areSelected;
    }
};
