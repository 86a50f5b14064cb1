#pragma once

#include <mirel_fitting/PolynomialTerms.h>

#include <string>

/** Which polynomial a response surface is. */
struct ResponseSurfaceOptions
{
    /** Which of the terms that the cases can separate are kept. */
    enum class Selection
    {
        All, ///< every one
        /**
         * Those that lower the corrected Akaike information criterion (aicc of
         * ResponseSurfaceStatistics), for each output by itself: backward elimination, a linear
         * term staying as long as a term of second order has its input.
         */
        BackwardAicc
    };

    PolynomialTerms terms = PolynomialTerms::Quadratic; ///< what is fitted if the cases suffice
    Selection selection = Selection::All;               ///< out of these
    /** Of PolynomialTerms::Chosen: a TermFormula, else without effect. A model takes it in the
     *  symbols V1, V2, ...; what keeps a user's choice keeps it as typed, in the names of inputs,
     *  and gives models TermFormula::symbols(). */
    std::string formula = std::string();

    /** Formulas are compared as texts. */
    bool operator==(const ResponseSurfaceOptions& other) const
    {
        return terms == other.terms && selection == other.selection && formula == other.formula;
    }
};
