#include "session/diagnosis/Diagnosis.h"

#include "session/diagnosis/ColumnFindings.h"
#include "session/diagnosis/DependenceFindings.h"
#include "session/diagnosis/RepeatFindings.h"
#include "session/diagnosis/SizeFindings.h"
#include "session/diagnosis/SpreadFindings.h"
#include "session/diagnosis/TermFindings.h"

#include <algorithm>
#include <cmath>

namespace {
/** What compares each case with each other gets so few that it takes a fraction of a second. */
std::size_t maxComparedCases(const DiagnosedCases& cases)
{
    constexpr double work = 4e7;
    constexpr std::size_t maxCases = 2000;
    const double inputs = static_cast<double>(std::max<std::size_t>(1, cases.inputs.size()));
    return std::min(maxCases, static_cast<std::size_t>(std::sqrt(work / inputs)));
}

/** What compares each input with each other does so over these. */
std::size_t maxCasesOfInputs(const DiagnosedCases& cases)
{
    constexpr double work = 1e8;
    const double inputs = static_cast<double>(std::max<std::size_t>(1, cases.inputs.size()));
    return std::max<std::size_t>(2000, static_cast<std::size_t>(work / (inputs * inputs)));
}
} // namespace

Diagnosis Diagnosis::of(const DiagnosedCases& cases)
{
    Diagnosis diagnosis;
    if (cases.count() == 0) {
        return diagnosis;
    }
    const auto add = [&](const std::vector<Finding>& found) {
        diagnosis.findings.insert(diagnosis.findings.end(), found.begin(), found.end());
    };
    add(ColumnFindings::constants(cases));
    add(ColumnFindings::farCases(cases));
    add(RepeatFindings::repeats(cases));
    add(SizeFindings::find(cases));
    add(TermFindings::find(cases));
    add(DependenceFindings::find(cases.sample(maxCasesOfInputs(cases))));
    add(ColumnFindings::decades(cases));
    const DiagnosedCases compared = cases.sample(maxComparedCases(cases));
    diagnosis.comparedCases = compared.count();
    const std::vector<Finding> gaps = ColumnFindings::gaps(cases);
    add(gaps);
    if (gaps.empty()) { // which lie between groups of cases, too
        add(SpreadFindings::find(compared));
    }
    add(RepeatFindings::nearCopies(compared));
    add(ColumnFindings::fewValues(cases));
    sortBySeverity(diagnosis.findings);
    return diagnosis;
}

void sortBySeverity(std::vector<Finding>& findings)
{
    std::stable_sort(
        findings.begin(), findings.end(),
        [](const Finding& left, const Finding& right) { return left.severity < right.severity; });
}
