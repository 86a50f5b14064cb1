#pragma once

#include <mirel_fitting/Export.h>

#include <string>

/** Which terms the polynomial of a response surface is to have, beside the constant. */
enum class PolynomialTerms
{
    Linear,       ///< V1, V2, ...
    Interactions, ///< these, and the products of two different inputs
    Quadratic,    ///< these, and the squares: the full quadratic polynomial
    Chosen        ///< those of a TermFormula
};

/** "linear", "interactions", "quadratic" or "chosen", as documents for programs say it; all but the
 *  last as users write it. */
MIREL_FITTING_EXPORT const char* termsWord(PolynomialTerms terms);

/** What a user's text means: Chosen for every text that is not one of the other words. */
MIREL_FITTING_EXPORT PolynomialTerms termsOfWord(const std::string& text);
