#include "plot/model/CoefficientPictures.h"

#include "plot/model/DrawableValues.h"

#include <session/report/ReportHeading.h>
#include <session/text/QuotedText.h>

#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <algorithm>
#include <cmath>
#include <utility>

CoefficientPicture coefficientPicture(const ResponseSurfaceStatistics& statistics,
                                      const std::vector<std::string>& inputs,
                                      const std::string& output, OutputTransform transform,
                                      const std::string& unit)
{
    constexpr double significance = 0.05; // the level of the limits
    const std::string owner = "The model of " + quotedText(output);
    CoefficientPicture picture;
    picture.title = output + ", response surface, coefficients";
    picture.valueName = transform != OutputTransform::None
                            ? "coefficient of " + ReportHeading::modelledText(transform, output)
                        : unit.empty() ? "coefficient, in the unit of " + output
                                       : "coefficient (" + unit + ')';
    bool hasLimits = true;
    bool hasGrey = false;
    for (const CoefficientStatistics& each : statistics.codedCoefficients) {
        // The constant is on a scale of its own, beside which the others would look like 0.
        if (!each.isKept || each.factors.empty()) {
            continue;
        }
        CoefficientPicture::Term term = {
            {}, each.estimate, each.lower, each.upper, !(each.p >= significance)};
        hasGrey = hasGrey || !term.isSignificant;
        for (const std::size_t input : each.factors) {
            term.factors.push_back(inputs.at(input));
        }
        picture.terms.push_back(std::move(term));
        requireDrawable({each.estimate}, owner);
        if (std::isfinite(each.lower) && std::isfinite(each.upper)) {
            requireDrawable({each.lower, each.upper}, owner);
        } else {
            hasLimits = false;
        }
    }
    if (picture.terms.empty()) {
        throw SurrogateModelInterface::Error(owner +
                                             " is a constant, without coefficients to draw. "
                                             "Add cases.");
    }
    std::stable_sort(picture.terms.begin(), picture.terms.end(),
                     [](const auto& left, const auto& right) {
                         return std::abs(left.estimate) > std::abs(right.estimate);
                     });
    picture.caption = std::string("Inputs coded to -1 and 1 at ") +
                      (statistics.coding == InputCoding::Factorial
                           ? "their factorial points, or without these at "
                           : "") +
                      "the ends of their ranges; without the constant. " +
                      (hasLimits ? "The bars are 95\302\240% confidence limits."
                                 : "As many terms as cases leave nothing for confidence limits.") +
                      (hasGrey ? " Grey: not significant, the limits hold 0." : "");
    return picture;
}
