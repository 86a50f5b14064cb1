#pragma once

#include <mirel_fitting/PolynomialTerms.h>

/** Which polynomial a response surface is. */
struct ResponseSurfaceOptions
{
    /** Which of the terms that the cases can separate are kept. */
    enum class Selection
    {
        All,
        /**
         * Those that lower the corrected Akaike information criterion (aicc of
         * ResponseSurfaceStatistics), for each output by itself: backward elimination, a linear
         * term staying as long as a term of second order has its input.
         */
        BackwardAicc
    };

    PolynomialTerms terms = PolynomialTerms::Quadratic;
    Selection selection = Selection::All;

    bool operator==(const ResponseSurfaceOptions& other) const
    {
        return terms == other.terms && selection == other.selection;
    }
};
