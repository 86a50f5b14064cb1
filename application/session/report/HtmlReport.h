#pragma once

#include <surrogate_session/Export.h>

#include <string>
#include <vector>

class CaseSession;

/** What a fit has to say, as a page that stands alone: one file without scripts and links. */
namespace HtmlReport {
/**
 * An HTML5 document: the cases, the inputs with their symbols, and for each output its figures,
 * warnings, pictures and, of a response surface, statistics and equation. The same session gives
 * the same text.
 * @param pictures one list per output: svg elements, or HTML paragraphs in their place; they are
 *                 taken as they are.
 * @throw SurrogateModelInterface::Error
 */
SURROGATE_SESSION_EXPORT std::string text(CaseSession& session,
                                          const std::vector<std::vector<std::string>>& pictures);

/** A text of the user's as HTML shows it, on one line. */
SURROGATE_SESSION_EXPORT std::string escaped(const std::string& text);
} // namespace HtmlReport
