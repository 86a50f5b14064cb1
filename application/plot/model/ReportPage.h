#pragma once

#include <session/report/HtmlReport.h>

#include <surrogate_plot/Export.h>

#include <string>

class CaseSession;

/** The HtmlReport of a fit with its pictures: per output predicted against actual values,
 * residuals, the coefficients of a response surface, a contour of the two inputs that matter most,
 * and sweeps of the inputs on one axis. */
namespace ReportPage {
/** A picture that cannot be drawn is replaced by a paragraph that says why.
 *  @throw SurrogateModelInterface::Error where the model cannot be fitted; FileError as
 *         DrawingApplication. */
SURROGATE_PLOT_EXPORT std::string html(CaseSession& session, const HtmlReport::Origin& origin = {});
} // namespace ReportPage
