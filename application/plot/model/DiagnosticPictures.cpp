#include "plot/model/DiagnosticPictures.h"

#include "plot/model/DrawableValues.h"

#include <session/text/DecimalText.h>
#include <session/text/QuotedText.h>
#include <session/text/UnitText.h>

#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <boost/math/distributions/normal.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {
/** The probability of a rank, from 0, among so many: Blom's for few, else the middle of its share,
 *  as in R's normal plots. */
double plottingPosition(std::size_t rank, std::size_t count)
{
    constexpr std::size_t few = 10;
    const double offset = count <= few ? 3.0 / 8.0 : 0.5;
    return (static_cast<double>(rank) + 1.0 - offset) /
           (static_cast<double>(count) + 1.0 - 2.0 * offset);
}

std::string placeText(const RidgePoint& point, const std::vector<std::string>& inputs)
{
    constexpr std::size_t mostNamed = 6;
    constexpr int digits = 4;
    std::vector<std::string> places;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        if (!std::isnan(point.coordinates[i])) {
            places.push_back(inputs[i] + " = " + shownNumber(point.coordinates[i], digits));
        }
    }
    const std::size_t named = std::min(mostNamed, places.size());
    const std::size_t more = places.size() - named;
    places.resize(named);
    return joinedText(places) + andMore(more);
}
} // namespace

ScatterPicture normalPicture(const ResponseSurfaceStatistics& statistics, const std::string& output)
{
    std::vector<const CaseDiagnostics*> cases;
    for (const CaseDiagnostics& one : statistics.cases) {
        if (std::isfinite(one.externallyStudentised)) {
            cases.push_back(&one);
        }
    }
    if (cases.empty()) {
        throw SurrogateModelInterface::Error(
            "The residuals of " + quotedText(output) +
            " cannot be studentised: the polynomial passes through all cases, or all but one. More "
            "cases, or fewer terms, leave residuals.");
    }
    std::stable_sort(cases.begin(), cases.end(), [](const auto* left, const auto* right) {
        return left->externallyStudentised < right->externallyStudentised;
    });

    ScatterPicture picture;
    picture.title = output + ", response surface, normal plot of the residuals";
    picture.xName = "normal quantile";
    picture.yName = "externally studentised residual";
    picture.reference = ScatterPicture::Diagonal;
    const boost::math::normal normal;
    for (std::size_t k = 0; k < cases.size(); ++k) {
        picture.x.push_back(boost::math::quantile(normal, plottingPosition(k, cases.size())));
        picture.y.push_back(cases[k]->externallyStudentised);
        if (std::abs(cases[k]->externallyStudentised) > statistics.outlierLimit) {
            picture.marks.push_back({k, cases[k]->row + 1});
        }
    }
    requireDrawable(picture.y, "The model of " + quotedText(output));
    constexpr int digits = 3;
    picture.caption = "Residuals of normal noise lie near the dashed line. ";
    picture.caption += picture.marks.empty()
                           ? "No case is suspected to be an outlier: none is beyond "
                           : "Numbered cases are suspected to be outliers: they are beyond ";
    picture.caption +=
        "\302\261 " + shownNumber(statistics.outlierLimit, digits) + " (Bonferroni at 5\302\240%).";
    return picture;
}

SweepPicture ridgePicture(const ResponseSurfaceStatistics& statistics, bool isAscent,
                          const std::vector<std::string>& inputs, const std::string& output,
                          const std::string& unit, const ConfidenceBand& band)
{
    const std::vector<RidgePoint>& ridge = isAscent ? statistics.ascent : statistics.descent;
    const std::string owner = "The model of " + quotedText(output);
    if (ridge.empty() && statistics.isCurved) {
        throw SurrogateModelInterface::Error(
            owner + " has no ridge: the cases cannot separate its second-order terms from each "
                    "other.");
    }
    if (ridge.empty()) {
        throw SurrogateModelInterface::Error(owner + " is a constant: it has no ridge.");
    }
    SweepPicture picture;
    picture.title =
        output + ", response surface, ridge of steepest " + (isAscent ? "ascent" : "descent");
    picture.inputName = "distance from the middle, inputs coded to [-1, 1]";
    picture.outputName = nameWithUnit(output, unit);
    picture.modelLabel = isAscent ? "largest value" : "smallest value";
    for (const RidgePoint& point : ridge) {
        picture.inputs.push_back(point.distance);
        picture.model.push_back(point.value);
    }
    picture.lower = band.lower;
    picture.upper = band.upper;
    picture.bandLabel = band.label;
    picture.caption = "In the middle " + placeText(ridge.front(), inputs) + "; at distance 1 " +
                      placeText(ridge.back(), inputs) + ".";
    for (const auto* const column : {&picture.model, &picture.lower, &picture.upper}) {
        requireDrawable(*column, owner);
    }
    return picture;
}
