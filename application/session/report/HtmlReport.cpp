#include "session/report/HtmlReport.h"

#include "session/cases/VariableNames.h"
#include "session/model/CaseSession.h"
#include "session/report/FindingsReport.h"
#include "session/report/FitFigures.h"
#include "session/report/ReportHeading.h"
#include "session/report/StatisticsTables.h"
#include "session/text/DecimalText.h"
#include "session/text/QuotedText.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace {
/** Tables that are too wide scroll on a screen and wrap on paper. Pictures are drawn on white,
 * which is toned down in the dark. */
constexpr char style[] = R"(
:root { color-scheme: light dark; --text: #222; --back: #fff; --line: #ddd; --strong: #888;
  --soft: #f4f5f7; --good: #00795c; --fair: #b07400; --poor: #c03f00; --bar: #0072b2; }
@media (prefers-color-scheme: dark) { :root { --text: #ddd; --back: #16181c; --line: #383c44;
  --strong: #777; --soft: #22252b; --good: #35b98f; --fair: #e0a83a; --poor: #f08050;
  --bar: #4aa3dd; } svg { filter: brightness(0.88); border-radius: 4px; } }
* { box-sizing: border-box; }
body { font-family: sans-serif; line-height: 1.4; max-width: 75em; margin: 1.5em auto;
  padding: 0 1em; color: var(--text); background: var(--back); overflow-wrap: break-word; }
h1 { font-size: 1.5em; } h2 { font-size: 1.3em; border-bottom: 1px solid var(--strong);
  margin-top: 2em; } h3 { font-size: 1em; margin: 1.4em 0 0.3em; }
table { border-collapse: collapse; font-variant-numeric: tabular-nums; margin: 0.3em 0 1em; }
th, td { padding: 0.15em 0.8em; text-align: right; border-bottom: 1px solid var(--line); }
th { border-bottom: 1px solid var(--strong); vertical-align: bottom; }
th:first-child, td:first-child { text-align: left; padding-left: 0; }
td + td { white-space: nowrap; } table.figures td { text-align: left; vertical-align: top; }
table.figures td:first-child { white-space: nowrap; }
table.figures td + td { white-space: normal; overflow-wrap: anywhere; }
.wide { overflow-x: auto; }
.verdict { background: var(--soft); padding: 0.5em 0.8em; margin: 0.4em 0;
  border-left: 5px solid var(--strong); }
.good { border-color: var(--good); } .fair { border-color: var(--fair); }
.poor { border-color: var(--poor); }
.warning { border-left: 5px solid var(--poor); padding-left: 0.6em; margin: 0.4em 0; }
.share { display: inline-block; height: 0.8em; background: var(--bar); min-width: 1px; }
td.bar { width: 16em; text-align: left; }
pre { white-space: pre-wrap; overflow-wrap: anywhere; }
.pictures { display: grid; gap: 1em; margin: 1em 0;
  grid-template-columns: repeat(auto-fill, minmax(min(100%, 26em), 1fr)); }
svg { max-width: 100%; height: auto; display: block; }
@media (max-width: 40em) { body { margin: 0.5em auto; padding: 0 0.6em; } td.bar { width: 7em; }
  th, td { padding: 0.15em 0.4em; } table.figures td:first-child { white-space: normal; } }
@media print { :root { --text: #000; --back: #fff; --line: #ccc; --soft: #fff; --bar: #0072b2; }
  body { margin: 0; padding: 0; max-width: none; font-size: 9pt; }
  h2, h3 { break-after: avoid; } tr, .pictures > *, .verdict { break-inside: avoid; }
  .pictures { display: block; orphans: 1; widows: 1; }
  .pictures > * { display: inline-block; width: 48%; }
  .wide { overflow: visible; } svg { filter: none; }
  .share { print-color-adjust: exact; -webkit-print-color-adjust: exact; } }
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

/** More rows are folded away. */
constexpr std::size_t maxOpenRows = 30;

std::string inputTable(const Workspace& workspace)
{
    StatisticsTables::Table table = {"Inputs", {"Name", "Symbol", "Minimum", "Maximum", "Held at"}};
    const std::vector<double> held = workspace.heldValues();
    const auto ranges = workspace.sweepRanges();
    for (const VarPtr& input : workspace.inputs()) {
        const auto variable = input.lock();
        const std::size_t position = table.rows.size();
        const auto [minimum, maximum] = ranges[position];
        table.rows.push_back({shortText(workspace.labelOf(variable->name())),
                              'V' + std::to_string(position + 1), shownNumber(minimum),
                              shownNumber(maximum), shownNumber(held[position])});
    }
    const std::string text = tableText(table);
    if (table.rows.size() <= maxOpenRows) {
        return text;
    }
    return "<details><summary>" + std::to_string(table.rows.size()) + " inputs</summary>\n" + text +
           "</details>\n";
}

std::string figureTable(const FitFigures::Figures& figures)
{
    std::string text = "<table class=\"figures\"><tbody>\n";
    for (const auto& [name, figure] : figures) {
        text += row({name, figure}, "td");
    }
    return text + "</tbody></table>\n";
}

/** What the page begins with: where it comes from. */
std::string originTable(const CaseSession& session, const HtmlReport::Origin& origin)
{
    const std::string& path = session.source().path;
    FitFigures::Figures known = {{"Case file", path == "-" ? "the standard input" : path},
                                 {"Cases", ReportHeading::caseText(session)},
                                 {"Model", ReportHeading::modelText(session)},
                                 {"Command", origin.command},
                                 {"Version", origin.version},
                                 {"Date", origin.date}};
    const auto isUnknown = [](const auto& figure) { return figure.second.empty(); };
    known.erase(std::remove_if(known.begin(), known.end(), isUnknown), known.end());
    return figureTable(known);
}

/** The range of an output over the valid cases. */
double spreadOf(const Workspace& workspace, const VarPtr& output)
{
    const std::vector<double>& column = workspace.project().numericValues(output);
    double least = std::numeric_limits<double>::infinity();
    double most = -least;
    for (const std::size_t row : workspace.validCases()) {
        least = std::min(least, column[row]);
        most = std::max(most, column[row]);
    }
    return most - least;
}

/** How well an output is predicted, in one sentence: what readers look for first. */
std::string verdict(const OutputFit& fit, double spread, const std::string& unit)
{
    constexpr double good = 0.8;
    constexpr double fair = 0.4;
    constexpr int digits = 3;
    const FitMetrics& metrics = fit.metrics;
    const double share = fit.kriging ? metrics.q2 : metrics.predictedR2;
    const double error = metrics.looRmse;
    std::string kind = "poor";
    std::string text = "left-out cases are predicted no better than by the mean of the others";
    if (!std::isfinite(share)) {
        return "<p class=\"verdict\"><strong>" + escaped(shortText(fit.name)) +
               "</strong>: there are too few cases to leave one out, so that there is no case to "
               "estimate the error of predictions from.</p>\n";
    }
    if (share >= good) {
        kind = "good";
        text = "left-out cases are predicted well";
    } else if (share >= fair) {
        kind = "fair";
        text = "left-out cases are predicted roughly";
    } else if (share > 0.0) {
        text = "left-out cases are hardly predicted";
    }
    text += " (Q2 " + shownNumber(share, digits) + "), with a typical error of " +
            shownNumber(error, digits) + (unit.empty() ? "" : ' ' + unit);
    if (spread > 0.0) {
        text += ", " + shownNumber(100.0 * error / spread, 2) + " % of the range of the cases";
    }
    text += '.';
    const std::size_t warnings = fit.warnings.size();
    if (warnings > 0) {
        text += warnings == 1 ? " There is a warning, see below."
                              : " There are " + std::to_string(warnings) + " warnings, see below.";
    }
    return "<p class=\"verdict " + kind + "\"><strong>" + escaped(shortText(fit.name)) +
           "</strong>: " + escaped(text) + "</p>\n";
}

/** The strongest inputs, with bars. */
std::string rankingTable(const std::vector<std::pair<std::size_t, double>>& ranking,
                         const std::vector<std::string>& inputs)
{
    constexpr std::size_t maxInputs = 12;
    if (ranking.empty()) {
        return "";
    }
    std::string text = element("h3", "Ranking of the inputs") +
                       element("p", "How much the output changes along each input over its range, "
                                    "the others held, as a share of the largest change.") +
                       "<table><tbody>\n";
    for (std::size_t i = 0; i < std::min(ranking.size(), maxInputs); ++i) {
        const std::string percent = std::to_string(std::lround(100.0 * ranking[i].second));
        text += "<tr><td>" + escaped(inputs[ranking[i].first]) + "</td><td>" + percent +
                " %</td><td class=\"bar\"><span class=\"share\" style=\"width:" + percent +
                "%\"></span></td></tr>\n";
    }
    text += "</tbody></table>\n";
    if (ranking.size() > maxInputs) {
        text += element("p", std::to_string(ranking.size() - maxInputs) +
                                 " further inputs change the output less.");
    }
    return text;
}

std::string findingSection(const std::vector<std::string>& sentences)
{
    if (sentences.empty()) {
        return "";
    }
    std::string list;
    for (const std::string& sentence : sentences) {
        list += element("li", escaped(sentence));
    }
    return element("h3", "Findings") + element("ul", list);
}

std::string outputSection(const OutputFit& fit, const std::vector<std::string>& inputs,
                          const ResponseSurfaceStatistics* statistics,
                          const HtmlReport::OutputParts& parts)
{
    std::string text = element("h2", escaped(shortText(fit.name)));
    for (const std::string& note : FitFigures::notes(fit, statistics)) {
        text += element("p", "Note: " + escaped(note));
    }
    for (const std::string& warning : fit.warnings) {
        text += "<p class=\"warning\">Warning: " + escaped(warning) + "</p>\n";
    }
    text +=
        figureTable(FitFigures::of(fit, inputs, statistics)) + rankingTable(parts.ranking, inputs);
    if (!parts.pictures.empty()) {
        text += "<div class=\"pictures\">\n";
        for (const std::string& picture : parts.pictures) {
            text += "<div>" + picture + "</div>\n";
        }
        text += "</div>\n";
    }
    return text;
}

std::string statisticsSection(const ResponseSurfaceStatistics& statistics,
                              const std::vector<std::string>& inputs, OutputTransform transform,
                              const std::string& equation)
{
    std::string text;
    for (const StatisticsTables::Table& table :
         StatisticsTables::tables(statistics, inputs, transform)) {
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
    std::string result = oneLineText(text);
    for (const auto& [character, reference] : // the ampersand first: the references begin with it
         {std::pair("&", "&amp;"),
          {"<", "&lt;"},
          {">", "&gt;"},
          {"\"", "&quot;"},
          {"'", "&#39;"}}) {
        boost::algorithm::replace_all(result, character, reference);
    }
    return result;
}

std::string HtmlReport::text(CaseSession& session, const std::vector<OutputParts>& parts,
                             const Origin& origin)
{
    const bool isKriging = session.modelType() == CaseSession::Kriging;
    const std::vector<OutputFit> fits = session.calibratedFit().outputs;
    const std::vector<ResponseSurfaceStatistics>& statistics = session.statistics();
    const std::vector<std::string> equations =
        statistics.empty() ? std::vector<std::string>() : session.equations();
    const std::vector<std::string> inputs = shownNamesOf(session.inputs());
    const std::string title = std::string(isKriging ? "Kriging" : "Response surface") + " of " +
                              joinedText(shownNamesOf(session.outputs()));

    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width, "
                       "initial-scale=1\"/>\n" +
                       element("title", escaped(title)) + "<style>" + style + "</style>\n" +
                       "</head>\n<body>\n" + element("h1", escaped(title));
    for (std::size_t i = 0; i < fits.size(); ++i) {
        html +=
            verdict(fits[i], spreadOf(session, session.outputs()[i]), session.unitOf(fits[i].name));
    }
    html += originTable(session, origin) + inputTable(session);
    html += findingSection(FindingsReport::sentences(session.findings()));
    for (std::size_t i = 0; i < fits.size(); ++i) {
        html += outputSection(fits[i], inputs, statistics.empty() ? nullptr : &statistics[i],
                              i < parts.size() ? parts[i] : OutputParts());
        if (!statistics.empty()) {
            std::string equation = equations[i];
            equation.erase(equation.find_last_not_of('\n') + 1);
            html += statisticsSection(statistics[i], inputs, fits[i].modelled.transform, equation);
        }
    }
    return html + "</body>\n</html>\n";
}
