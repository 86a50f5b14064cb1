#pragma once

#include <string>
#include <vector>

/**
 * The coefficients of one output, each with its confidence limits, from top to bottom. The last
 * ones are left out where a picture of a given size has no room for all; the caption says so.
 */
struct CoefficientPicture
{
    struct Term
    {
        /** Names of inputs; two equal ones are a square. */
        std::vector<std::string> factors;
        double estimate = 0.0; ///< finite, in the unit of the output
        double lower = 0.0;    ///< NaN, like `upper`, where there are no limits
        double upper = 0.0;
        bool isSignificant = true; ///< others are drawn in grey
    };

    std::string title;
    std::string valueName; ///< what the axis shows
    std::vector<Term> terms;
    std::string caption; ///< empty for none
};
