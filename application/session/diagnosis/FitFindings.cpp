#include "session/diagnosis/FitFindings.h"

#include "session/diagnosis/FindingWords.h"
#include "session/text/DecimalText.h"
#include "session/text/SettingHint.h"

#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {
std::vector<std::size_t> sortedRows(const std::vector<CaseDiagnostics>& cases)
{
    std::vector<std::size_t> rows;
    for (const CaseDiagnostics& diagnostics : cases) {
        rows.push_back(diagnostics.row);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

/** Whether the design cannot tell which of two cases is the outlier: then their residuals are equal
 *  in size. Those of copies of one case are, too. */
bool areMirrored(const CaseDiagnostics& left, const CaseDiagnostics& right)
{
    constexpr double rounding = 1e-6;
    const double size = std::fabs(left.externallyStudentised);
    const bool areCopies =
        left.output == right.output &&
        std::fabs(left.residual - right.residual) <= rounding * std::fabs(left.residual);
    return !areCopies &&
           std::fabs(size - std::fabs(right.externallyStudentised)) <= rounding * size;
}

void addOutliers(const std::string& output, const ResponseSurfaceStatistics& statistics,
                 std::vector<Finding>& findings)
{
    std::vector<CaseDiagnostics> suspected; // the largest residual first
    for (const std::size_t k : statistics.suspectedOutliers()) {
        suspected.push_back(statistics.cases[k]);
    }
    if (suspected.empty()) {
        return;
    }
    const std::string name = FindingWords::names({output});
    const auto others = std::find_if(suspected.begin() + 1, suspected.end(),
                                     [&](const CaseDiagnostics& diagnostics) {
                                         return !areMirrored(suspected.front(), diagnostics);
                                     });
    const std::vector<CaseDiagnostics> mirrored(suspected.begin(), others);
    if (mirrored.size() > 1) {
        const bool areTwo = mirrored.size() == 2;
        const std::vector<std::size_t> rows = sortedRows(mirrored);
        const std::string which = areTwo ? "Either case " + std::to_string(rows[0] + 1) +
                                               " or case " + std::to_string(rows[1] + 1)
                                         : "One of " + FindingWords::cases(rows);
        findings.push_back(
            Finding("suspectedOutliers", Finding::Warning, {output},
                    which + " lies far from the fit of " + name +
                        " to the others, and the design cannot tell which: it bends the "
                        "fit and widens the intervals; check " +
                        (areTwo ? "both" : "them") + ", exclude one" +
                        settingHint(Setting::ExcludedCases) + " and look again."));
        suspected.erase(suspected.begin(), others);
    }
    if (suspected.empty()) {
        return;
    }
    const bool isOne = suspected.size() == 1;
    const std::string them = isOne ? "it" : "them";
    findings.push_back(Finding(
        "suspectedOutliers", Finding::Warning, {output},
        FindingWords::casesFirst(sortedRows(suspected)) + (isOne ? " lies" : " lie") +
            " far from the fit of " + name + " to the others (" + (isOne ? "its" : "their") +
            " externally studentised residual" + (isOne ? " exceeds " : "s exceed ") +
            shownFigure(statistics.outlierLimit) +
            ", Bonferroni at 5 %): " + (isOne ? "it bends" : "they bend") + " the fit and widen" +
            (isOne ? "s" : "") + " the intervals; check " + them + ", and fit once more without " +
            them + settingHint(Setting::ExcludedCases) + '.'));
}

/** Cases that the fit passes near whatever their output is, and that move it. */
void addInfluentialCases(const std::string& output, const ResponseSurfaceStatistics& statistics,
                         std::vector<Finding>& findings)
{
    constexpr double nearOne = 0.9;
    constexpr double fromTheMean = 1.5; // of designs with few cases more than terms all are near 1
    constexpr double largestDistance = 1.0; // Cook, Weisberg
    std::vector<CaseDiagnostics> influential;
    for (const CaseDiagnostics& diagnostics : statistics.cases) {
        if (diagnostics.leverage > std::max(nearOne, fromTheMean * statistics.meanLeverage) &&
            diagnostics.cooksDistance > largestDistance) {
            influential.push_back(diagnostics);
        }
    }
    if (influential.empty()) {
        return;
    }
    const bool isOne = influential.size() == 1;
    const std::string them = isOne ? "it" : "them";
    const std::string figures = isOne ? " (leverage " + shownFigure(influential[0].leverage) +
                                            ", Cook's distance " +
                                            shownFigure(influential[0].cooksDistance) + ")"
                                      : "";
    findings.push_back(
        Finding("influentialCases", Finding::Warning, {output},
                "The fit of " + FindingWords::names({output}) + " rests on " +
                    FindingWords::cases(sortedRows(influential)) + figures + ": it passes near " +
                    (isOne ? "this case" : "these cases") +
                    " whatever the output there, so that a fault would not show; check " + them +
                    ", and repeat " + them + " or add cases nearby."));
}

void addPoorPrediction(const std::string& output, const ResponseSurfaceStatistics& statistics,
                       std::vector<Finding>& findings)
{
    constexpr double farBelow = 0.3;
    constexpr double good = 0.5; // of a smaller R2 nobody expects predictions
    if (!(statistics.r2 >= good && statistics.r2 - statistics.predictedR2 > farBelow)) {
        return;
    }
    const bool isWorthless = statistics.predictedR2 <= 0.0;
    findings.push_back(
        Finding("poorPrediction", Finding::Warning, {output},
                "The fit of " + FindingWords::names({output}) + " explains " +
                    FindingWords::percent(statistics.r2) +
                    " of the variance of its own cases, but predicts left-out ones " +
                    (isWorthless ? std::string("no better than their mean") : "far worse") +
                    " (Q2 " + shownFigure(statistics.predictedR2) +
                    "): it has many terms for so few cases, or single cases decide it; "
                    "add cases, or choose fewer terms" +
                    settingHint(Setting::Terms) + " or have them selected" +
                    settingHint(Setting::TermSelection) + '.'));
}
} // namespace

std::vector<Finding> FitFindings::find(const std::string& output,
                                       const ResponseSurfaceStatistics& statistics)
{
    std::vector<Finding> findings;
    addOutliers(output, statistics, findings);
    addInfluentialCases(output, statistics, findings);
    addPoorPrediction(output, statistics, findings);
    return findings;
}
