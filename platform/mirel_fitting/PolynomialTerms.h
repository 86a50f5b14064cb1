#pragma once

/** Which terms the polynomial of a response surface is to have, beside the constant. */
enum class PolynomialTerms
{
    Linear,       ///< V1, V2, ...
    Interactions, ///< these, and the products of two different inputs
    Quadratic,    ///< these, and the squares: the full quadratic polynomial
    Chosen        ///< those of a TermFormula
};
