#include "session/report/HtmlReport.h"

#include "session/cases/VariableNames.h"
#include "session/model/CaseSession.h"
#include "session/report/FitReport.h"
#include "session/report/ReportHeading.h"
#include "session/report/StatisticsTables.h"
#include "session/text/JoinedText.h"
#include "session/text/NumberText.h"
#include "session/text/QuotedText.h"

#include <cstddef>
#include <utility>

namespace {
/** Fits a page of paper: tables that are too wide scroll on a screen and wrap on paper. */
constexpr char style[] = R"(
body { font-family: sans-serif; line-height: 1.4; max-width: 60em; margin: 2em auto; padding: 0 1em;
  color: #222; background: #fff; }
h1 { font-size: 1.5em; } h2 { font-size: 1.25em; border-bottom: 1px solid #999; margin-top: 2em; }
h3 { font-size: 1em; margin-bottom: 0.3em; }
table { border-collapse: collapse; font-variant-numeric: tabular-nums; margin: 0.3em 0 1em; }
th, td { padding: 0.15em 0.8em; text-align: right; border-bottom: 1px solid #ddd; }
th { border-bottom: 1px solid #999; } th:first-child, td:first-child { text-align: left; }
td + td { white-space: nowrap; } table.figures td + td { white-space: normal; }
table.figures td { text-align: left; } table.figures td:first-child { white-space: nowrap; }
.wide { overflow-x: auto; } .warning { border-left: 4px solid #d55e00; padding-left: 0.6em; }
pre { white-space: pre-wrap; overflow-wrap: anywhere; }
.pictures { display: flex; flex-wrap: wrap; gap: 1em; }
.pictures > * { flex: 1 1 24em; max-width: 40em; }
svg { max-width: 100%; height: auto; }
@media print { body { margin: 0; max-width: none; font-size: 9pt; }
  h2, h3 { break-after: avoid; } tr, svg { break-inside: avoid; } .wide { overflow: visible; } }
)";

using HtmlReport::escaped;

std::string element(const std::string& name, const std::string& content)
{
    return '<' + name + '>' + content + "</" + name + ">\n";
}

std::string row(const std::vector<std::string>& cells, const std::string& kind)
{
    std::string text = "<tr>";
    for (const std::string& cell : cells) {
        text += '<' + kind + '>' + escaped(cell) + "</" + kind + '>';
    }
    return text + "</tr>\n";
}

std::string tableText(const StatisticsTables::Table& table)
{
    std::string text = element("h3", escaped(table.title)) + "<div class=\"wide\"><table>\n";
    text += "<thead>" + row(table.heading, "th") + "</thead>\n<tbody>\n";
    for (const std::vector<std::string>& cells : table.rows) {
        text += row(cells, "td");
    }
    return text + "</tbody></table></div>\n";
}

StatisticsTables::Table inputTable(const Workspace& workspace)
{
    StatisticsTables::Table table;
    table.title = "Inputs";
    table.heading = {"Name", "Symbol", "Minimum", "Maximum"};
    for (const VarPtr& input : workspace.inputs()) {
        const auto variable = input.lock();
        const auto [minimum, maximum] = variable->range();
        table.rows.push_back({variable->name(), 'V' + std::to_string(table.rows.size() + 1),
                              shownNumber(minimum), shownNumber(maximum)});
    }
    return table;
}

std::string figureTable(const OutputFit& fit, const std::vector<std::string>& inputs,
                        const ResponseSurfaceStatistics* statistics)
{
    std::string text = "<table class=\"figures\"><tbody>\n";
    for (const auto& [name, figure] : FitReport::figures(fit, inputs, statistics)) {
        text += row({name, figure}, "td");
    }
    return text + "</tbody></table>\n";
}

std::string outputSection(const OutputFit& fit, const std::vector<std::string>& inputs,
                          const ResponseSurfaceStatistics* statistics,
                          const std::vector<std::string>& pictures)
{
    std::string text = element("h2", escaped(fit.name)) + figureTable(fit, inputs, statistics);
    const std::string note = FitReport::transformNote(fit);
    text += note.empty() ? note : element("p", "Note: " + escaped(note)) + "\n";
    for (const std::string& warning : fit.warnings) {
        text += "<p class=\"warning\">Warning: " + escaped(warning) + "</p>\n";
    }
    if (!pictures.empty()) {
        text += "<div class=\"pictures\">\n";
        for (const std::string& picture : pictures) {
            text += "<div>" + picture + "</div>\n";
        }
        text += "</div>\n";
    }
    return text;
}

std::string statisticsSection(const ResponseSurfaceStatistics& statistics,
                              const std::vector<std::string>& inputs, const std::string& equation)
{
    std::string text;
    for (const StatisticsTables::Table& table : StatisticsTables::tables(statistics, inputs)) {
        text += tableText(table);
        text += table.note.empty() ? table.note : element("p", escaped(table.note));
    }
    text += element("h3", "Stationary point");
    text += element("p", escaped(StatisticsTables::stationaryPointText(statistics, inputs)));
    text += element("h3", "Equation");
    return text + "<pre>" + escaped(equation) + "</pre>\n";
}
} // namespace

std::string HtmlReport::escaped(const std::string& text)
{
    std::string result;
    for (const char character : oneLineText(text)) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

std::string HtmlReport::text(CaseSession& session,
                             const std::vector<std::vector<std::string>>& pictures)
{
    const bool isKriging = session.modelType() == CaseSession::Kriging;
    const std::vector<OutputFit> fits = session.calibratedFit().outputs;
    const std::vector<ResponseSurfaceStatistics> statistics = session.statistics();
    const std::vector<std::string> equations =
        statistics.empty() ? std::vector<std::string>() : session.equations();
    const std::vector<std::string> inputs = namesOf(session.inputs());
    const std::string title = std::string(isKriging ? "Kriging" : "Response surface") + " of " +
                              joinedText(namesOf(session.outputs()));

    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n" +
                       element("title", escaped(title)) + "<style>" + style + "</style>\n" +
                       "</head>\n<body>\n" + element("h1", escaped(title));
    html += element("p", "Model: " + ReportHeading::modelText(session) + '.');
    html += element("p", "Cases: " + escaped(ReportHeading::caseText(session)) + '.');
    html += tableText(inputTable(session));
    for (std::size_t i = 0; i < fits.size(); ++i) {
        html += outputSection(fits[i], inputs, statistics.empty() ? nullptr : &statistics[i],
                              i < pictures.size() ? pictures[i] : std::vector<std::string>());
        if (!statistics.empty()) {
            std::string equation = equations[i];
            equation.erase(equation.find_last_not_of('\n') + 1);
            html += statisticsSection(statistics[i], inputs, equation);
        }
    }
    return html + "</body>\n</html>\n";
}
