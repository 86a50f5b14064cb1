#pragma once

#include <mirel_fitting/FitMetrics.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/numerics/InputNames.h>
#include <mirel_fitting/polynomial/PolynomialFit.h>

#include <string>
#include <vector>

/** The texts about the fit of a response surface, in the symbols V1, V2, ... unless names
 *  of the inputs are given. */
class ResponseSurfaceTexts
{
public:
    /** The polynomial as one line, and its end: multiplied out, or in centred inputs
     *  where multiplying out would lose more than 1e-9 of the output's spread. */
    static std::string equation(const PolynomialFit& fit, const PolynomialFit::Output& output);

    /** A sentence for each input or term that is left out, naming the terms from which the cases
     *  cannot separate it. @param fit with all terms that are wanted. */
    static std::vector<std::string> dependences(const PolynomialFit& fit,
                                                const InputNames& names = InputNames());

    /** A line per figure, without the warnings. @param order its name. */
    static std::string quality(const PolynomialFit& fit, const std::string& order,
                               const FitMetrics& metrics,
                               const ResponseSurfaceStatistics& statistics);
};
