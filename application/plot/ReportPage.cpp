#include "plot/ReportPage.h"

#include "plot/DrawingApplication.h"
#include "plot/Picture.h"
#include "plot/SessionPictures.h"

#include <session/model/CaseSession.h>
#include <session/report/HtmlReport.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <cstddef>
#include <vector>

namespace {
using Pictures = std::vector<std::vector<std::string>>;

/** Two pictures stand side by side: larger ones would be shrunk until nobody could read them. */
const PictureSize sizeOnPage = {540, 420};

std::string excuse(const std::string& kind, const std::string& reason)
{
    return "<p>There is no picture of kind " + kind + ". " + HtmlReport::escaped(reason) + "</p>";
}

/** @param add puts the pictures of one kind on the page. One that cannot be made is no reason to do
 *             without the others. */
template <typename Add>
void addOrExcuse(const std::string& kind, Pictures& pictures, Add add)
{
    try {
        add();
    } catch (const SurrogateModelInterface::Error& error) {
        for (std::vector<std::string>& ofOutput : pictures) {
            ofOutput.push_back(excuse(kind, error.what()));
        }
    }
}

void addPictures(const std::string& kind, CaseSession& session, Pictures& pictures)
{
    addOrExcuse(kind, pictures, [&] {
        const std::vector<PictureData> made =
            SessionPictures::make(SessionPictures::kindOf(kind), session);
        for (std::size_t i = 0; i < pictures.size() && i < made.size(); ++i) {
            pictures[i].push_back(Picture({made[i]}, sizeOnPage).toInlineSvg());
        }
    });
}

void addSweeps(CaseSession& session, Pictures& pictures)
{
    addOrExcuse("sweep", pictures, [&] {
        const std::vector<std::vector<ReportSweep>> made = SessionPictures::reportSweeps(session);
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            for (const ReportSweep& sweep : made[i]) {
                pictures[i].push_back(sweep.picture
                                          ? Picture({*sweep.picture}, sizeOnPage).toInlineSvg()
                                          : excuse("sweep", sweep.reason));
            }
        }
    });
}
} // namespace

std::string ReportPage::html(CaseSession& session)
{
    const DrawingApplication application;
    Pictures pictures(session.outputs().size());
    addPictures("actual", session, pictures);
    addPictures("residuals", session, pictures);
    if (session.modelType() == CaseSession::ResponseSurface) {
        addPictures("coefficients", session, pictures);
    }
    addSweeps(session, pictures);
    return HtmlReport::text(session, pictures);
}
