#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

class CaseSession;

/** What a fit has to say, as a page that stands alone: one file without scripts and links, for
 *  screens of any width, light and dark, and for paper. */
namespace HtmlReport {
/** Where a page comes from; what is empty is not mentioned. */
struct Origin
{
    std::string command; ///< as typed
    std::string version; ///< of the program
    std::string date;
};

/** What the page shows of an output besides what the session knows. */
struct OutputParts
{
    /** Svg elements, or HTML paragraphs in their place, taken as they are. */
    std::vector<std::string> pictures;
    /** The inputs by position, each with its effect as a share of the largest, the strongest
     *  first. */
    std::vector<std::pair<std::size_t, double>> ranking;
};

/**
 * An HTML5 document: how well each output is predicted, the cases, the inputs with their symbols
 * and where they are held, and for each output its figures, warnings, ranking of the inputs,
 * pictures and, of a response surface, statistics and equation. The same arguments give the same
 * text.
 * @param parts one per output, or none at all.
 * @throw SurrogateModelInterface::Error
 */
SURROGATE_SESSION_EXPORT std::string
text(CaseSession& session, const std::vector<OutputParts>& parts, const Origin& origin = {});

/** A text of the user's as HTML shows it, on one line. */
SURROGATE_SESSION_EXPORT std::string escaped(const std::string& text);
} // namespace HtmlReport
