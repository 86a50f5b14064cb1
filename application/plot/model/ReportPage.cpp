#include "plot/model/ReportPage.h"

#include "plot/drawing/DrawingApplication.h"
#include "plot/drawing/Picture.h"
#include "plot/drawing/PlotWidget.h"
#include "plot/model/CasePictures.h"
#include "plot/model/CoefficientPictures.h"
#include "plot/model/ConfidenceBand.h"
#include "plot/model/ContourPictures.h"
#include "plot/model/EffectsPictures.h"
#include "plot/model/MainEffects.h"
#include "plot/model/ModelSlice.h"
#include "plot/model/SweepPictures.h"

#include <session/cases/VariableNames.h>
#include <session/model/CaseSession.h>
#include <session/report/HtmlReport.h>

#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace {
/** Two pictures stand side by side: larger ones would be shrunk beyond reading. */
const PictureSize sizeOnPage = {540, 420};

/** Of each input: enough for smooth lines of a picture that small. */
constexpr std::size_t contourValues = 61;

/** Sweeps of further inputs hardly change. */
constexpr std::size_t maxSweeps = 6;

/** Terms of coefficients make the picture grow, up to some seventy. */
PictureSize sizeFor(const PictureData& picture)
{
    constexpr int maxHeight = 1400;
    PictureSize size = sizeOnPage;
    if (const auto* const terms = std::get_if<CoefficientPicture>(&picture)) {
        size.height = std::clamp(PlotWidget::heightOf(*terms), size.height, maxHeight);
    }
    return size;
}

/** In the place of a picture that cannot be drawn, which does not cost the others. */
std::string faultText(const std::string& kind, const SurrogateModelInterface::Error& error)
{
    return "<p>There is no picture of kind " + kind + ". " + HtmlReport::escaped(error.what()) +
           "</p>";
}

/** @param make gives the picture. */
template <typename Make>
std::string drawn(const std::string& kind, Make make)
{
    try {
        PictureData picture = make();
        const PictureSize size = sizeFor(picture);
        return Picture({std::move(picture)}, size).toInlineSvg();
    } catch (const SurrogateModelInterface::Error& error) {
        return faultText(kind, error);
    }
}

/** The strongest effects on one axis. */
std::vector<std::string> drawnSweeps(CaseSession& session, std::size_t output,
                                     const MainEffects& effects)
{
    std::vector<std::string> pictures;
    std::vector<SweepPicture> sweeps;
    for (const ModelSlice* const slice : effects.strongest(output, maxSweeps)) {
        try {
            sweeps.push_back(
                sweepPicture(*slice, output, ConfidenceBand::of(session, *slice, output)));
        } catch (const SurrogateModelInterface::Error& error) {
            pictures.push_back(faultText("sweep", error));
        }
    }
    shareAxis(sweeps);
    for (SweepPicture& sweep : sweeps) {
        pictures.push_back(Picture({std::move(sweep)}, sizeOnPage).toInlineSvg());
    }
    return pictures;
}

/** What the page shows of one output. */
std::vector<std::string> picturesOf(CaseSession& session, std::size_t output,
                                    const MainEffects& effects,
                                    const std::vector<ResponseSurfaceStatistics>& statistics)
{
    std::vector<std::string> pictures;
    const LeaveOneOutCases cases = LeaveOneOutCases::of(session, output);
    const std::string& name = cases.outputName;
    pictures.push_back(drawn("actual", [&] { return actualPicture(cases); }));
    pictures.push_back(drawn("residuals", [&] { return residualPicture(cases); }));
    if (!statistics.empty()) {
        pictures.push_back(drawn("coefficients", [&] {
            return coefficientPicture(statistics[output], shownNamesOf(session.inputs()), name,
                                      session.fit().outputs[output].modelled.transform, cases.unit);
        }));
    }
    const std::vector<const ModelSlice*> strongest = effects.strongest(output, 2);
    if (strongest.size() == 2) {
        pictures.push_back(drawn("contour", [&] {
            std::vector<std::size_t> swept = {strongest[0]->swept.front(),
                                              strongest[1]->swept.front()};
            std::sort(swept.begin(), swept.end());
            ModelSlice slice = ModelSlice::overRanges(session, swept, contourValues,
                                                      ModelSlice::FittedCases(session));
            slice.findOutside(session);
            return contourPicture(slice, output);
        }));
    }
    for (std::string& sweep : drawnSweeps(session, output, effects)) {
        pictures.push_back(std::move(sweep));
    }
    return pictures;
}
} // namespace

std::string ReportPage::html(CaseSession& session, const HtmlReport::Origin& origin)
{
    const DrawingApplication application;
    const std::vector<ResponseSurfaceStatistics>& statistics = session.statistics();
    const MainEffects effects(session);
    std::vector<HtmlReport::OutputParts> parts;
    for (std::size_t i = 0; i < session.outputs().size(); ++i) {
        parts.push_back({picturesOf(session, i, effects, statistics), effects.ranking(i)});
    }
    return HtmlReport::text(session, parts, origin);
}
