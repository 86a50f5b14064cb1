#include "FitReport.h"

#include "CommandOutput.h"
#include "PictureLibrary.h"

#include <plot/PictureService.h>
#include <session/CaseSession.h>
#include <session/HtmlReport.h>
#include <session/InputSymbols.h>
#include <session/VariableNames.h>

#include <mirel_fitting/ResponseSurfaceStatisticsInterface.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <cmath>
#include <cstddef>
#include <vector>

namespace {
using Pictures = std::vector<std::vector<std::string>>;

/** What the coded coefficients of the terms that vary are: comparable with each other. */
CoefficientPicture coefficientPicture(const ResponseSurfaceStatistics& statistics,
                                      const std::string& output,
                                      const std::vector<std::string>& inputs)
{
    CoefficientPicture picture;
    picture.title = output;
    picture.valueName = "coefficient, inputs coded to [-1, 1]";
    for (const CoefficientStatistics& one : statistics.codedCoefficients) {
        if (one.isKept && one.term != "1" && std::isfinite(one.estimate)) {
            picture.terms.push_back(
                {termWithInputNames(one.term, inputs), one.estimate, one.lower, one.upper});
        }
    }
    picture.caption = "Bars: 95 % confidence limits.";
    return picture;
}

/** A picture that cannot be made is no reason to do without the others. */
void addPictures(const std::string& kind, CaseSession& session, Pictures& pictures)
{
    try {
        const std::vector<PictureData> made = pictureLibrary().make(kind, session);
        for (std::size_t i = 0; i < pictures.size() && i < made.size(); ++i) {
            pictures[i].push_back(pictureLibrary().inlineSvg(made[i], PictureSize()));
        }
    } catch (const SurrogateModelInterface::Error& error) {
        for (std::vector<std::string>& ofOutput : pictures) {
            ofOutput.push_back("<p>There is no picture of kind " + kind + ". " +
                               HtmlReport::escaped(error.what()) + "</p>");
        }
    }
}
} // namespace

void writeFitReport(CaseSession& session, const std::string& path)
{
    const std::vector<std::string> inputs = namesOf(session.inputs());
    const std::vector<std::string> outputs = namesOf(session.outputs());
    Pictures pictures(outputs.size());
    addPictures("actual", session, pictures);
    addPictures("residuals", session, pictures);
    const std::vector<ResponseSurfaceStatistics> statistics = session.statistics();
    for (std::size_t i = 0; i < statistics.size(); ++i) {
        const CoefficientPicture picture = coefficientPicture(statistics[i], outputs[i], inputs);
        if (!picture.terms.empty()) {
            pictures[i].push_back(pictureLibrary().inlineSvg(picture, PictureSize()));
        }
    }
    writeText(path, HtmlReport::text(session, pictures));
}
