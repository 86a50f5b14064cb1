#pragma once

#include <mirel_fitting/Export.h>

#include <string>
#include <vector>

/** One term of a fitted polynomial. */
struct PolynomialCoefficient
{
    std::string term;           ///< "1", "V1", "V1^2", "V1 V2", ...
    double estimate = 0.0;      ///< in units of the output and of the inputs; 0 if not kept
    double standardError = 0.0; ///< in the same units; NaN if not kept, or no case is left for it
    bool isKept = true;         ///< false: the cases cannot separate the term from the others
};

/** Ability of a model: the coefficients of its polynomial as numbers. */
class MIREL_FITTING_EXPORT CoefficientTableInterface
{
public:
    virtual ~CoefficientTableInterface();

    /**
     * Every term of the fitted order, in the order of the equation text, for the inputs as they
     * are: multiplied out, also where the text is written in centred inputs.
     * @throw SurrogateModelInterface::Error like surfaceCoefficientInformation().
     */
    virtual std::vector<PolynomialCoefficient> coefficientTable(int offset) const = 0;
};
