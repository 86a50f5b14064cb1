#include "plot/model/ReportPage.h"

#include "plot/drawing/DrawingApplication.h"
#include "plot/drawing/Picture.h"
#include "plot/model/CasePictures.h"
#include "plot/model/CoefficientPictures.h"
#include "plot/model/ConfidenceBand.h"
#include "plot/model/MainEffects.h"
#include "plot/model/SweepPictures.h"

#include <session/cases/VariableNames.h>
#include <session/model/CaseSession.h>
#include <session/report/HtmlReport.h>

#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <cstddef>
#include <vector>

namespace {
/** Two pictures stand side by side: larger ones would be shrunk beyond reading. */
const PictureSize sizeOnPage = {540, 420};

/** @param make gives the picture. One that cannot be drawn does not cost the others. */
template <typename Make>
std::string drawn(const std::string& kind, Make make)
{
    try {
        return Picture({make()}, sizeOnPage).toInlineSvg();
    } catch (const SurrogateModelInterface::Error& error) {
        return "<p>There is no picture of kind " + kind + ". " + HtmlReport::escaped(error.what()) +
               "</p>";
    }
}
} // namespace

std::string ReportPage::html(CaseSession& session)
{
    const DrawingApplication application;
    const std::vector<std::string> inputs = namesOf(session.inputs());
    const std::vector<std::string> outputs = namesOf(session.outputs());
    const std::vector<ResponseSurfaceStatistics> statistics = session.statistics();
    const MainEffects sweeps(session);
    std::vector<std::vector<std::string>> pictures(outputs.size());
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const LeaveOneOutCases cases = LeaveOneOutCases::of(session, i);
        pictures[i].push_back(drawn("actual", [&] { return actualPicture(cases); }));
        pictures[i].push_back(drawn("residuals", [&] { return residualPicture(cases); }));
        if (!statistics.empty()) {
            pictures[i].push_back(drawn("coefficients", [&] {
                return coefficientPicture(statistics[i], inputs, outputs[i]);
            }));
        }
        for (const ModelCut* const cut : sweeps.strongest(i, 6)) {
            pictures[i].push_back(drawn("sweep", [&] {
                return sweepPicture(*cut, i, ConfidenceBand::of(session, *cut, i));
            }));
        }
    }
    return HtmlReport::text(session, pictures);
}
