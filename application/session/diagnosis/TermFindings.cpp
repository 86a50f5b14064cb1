#include "session/diagnosis/TermFindings.h"

#include "session/diagnosis/FindingWords.h"
#include "session/text/SettingHint.h"

#include <mirel_fitting/numerics/TextPieces.h>
#include <mirel_fitting/responsesurface/TermSeparation.h>

#include <algorithm>
#include <set>
#include <string>
#include <utility>

using Column = DiagnosedCases::Column;
using FindingWords::names;

namespace {
using Term = TermFormula::Term;

bool isSquare(const Term& term)
{
    return term.size() == 2 && term[0] == term[1];
}

/** None where this would take long. */
std::optional<TermSeparation> separationOf(const DiagnosedCases& cases)
{
    constexpr double maxTerms = 300.0;
    constexpr std::size_t maxCases = 100000;
    constexpr double maxWork = 1e8;
    const auto terms = static_cast<double>(cases.termCount(true));
    if (cases.isKriging || cases.count() == 0 || cases.count() > maxCases || terms > maxTerms ||
        static_cast<double>(cases.count()) * terms * terms > maxWork) {
        return std::nullopt;
    }
    return TermSeparation(cases.responseSurface, pointersTo(cases.inputs), cases.count());
}

/** The terms that a dropped one cannot be told apart from: without those that are only there since
 *  inputs are measured from the middle of their ranges. */
std::vector<Term> partnersOf(const TermSeparation::Dependence& dependence)
{
    std::vector<Term> partners;
    std::set<std::size_t> inputs(dependence.term.begin(), dependence.term.end());
    for (auto other = dependence.others.rbegin(); other != dependence.others.rend(); ++other) {
        const bool isNew = std::any_of(other->begin(), other->end(),
                                       [&](std::size_t input) { return inputs.count(input) == 0; });
        if (other->size() == 2 || isNew) {
            partners.push_back(*other);
            inputs.insert(other->begin(), other->end());
        }
    }
    std::reverse(partners.begin(), partners.end());
    return partners;
}

/** "A * B", "A^2", as formulas of terms are written. */
std::string nameOf(const Term& term, const DiagnosedCases& cases)
{
    const auto name = [&](std::size_t input) { return names({cases.inputs[input].name}); };
    return isSquare(term)     ? name(term[0]) + "^2"
           : term.size() == 2 ? name(term[0]) + " * " + name(term[1])
                              : name(term[0]);
}

std::string listOf(const std::vector<Term>& terms, const DiagnosedCases& cases)
{
    std::vector<std::string> names;
    for (const Term& term : terms) {
        names.push_back(nameOf(term, cases));
    }
    return shortList(std::move(names));
}

std::vector<std::string> inputsOf(const std::vector<Term>& terms, const DiagnosedCases& cases)
{
    std::set<std::size_t> inputs;
    for (const Term& term : terms) {
        inputs.insert(term.begin(), term.end());
    }
    std::vector<std::string> found;
    for (const std::size_t input : inputs) {
        found.push_back(cases.inputs[input].name);
    }
    return found;
}

Finding findingOf(const std::vector<Term>& terms, const std::vector<Term>& partners,
                  const DiagnosedCases& cases)
{
    std::vector<Term> all = terms;
    all.insert(all.end(), partners.begin(), partners.end());
    const std::vector<std::string> inputs = inputsOf(all, cases);
    const std::string list = listOf(terms, cases);
    const bool isOne = terms.size() == 1;
    std::string text;
    if (partners.empty()) {
        text = list + " cannot be estimated from these cases: the model leaves " +
               (isOne ? "it" : "them") + " out; add cases where " + names(inputs) +
               " vary together.";
    } else {
        const std::string others = listOf(partners, cases);
        text = list + " cannot be told apart from " + others +
               " by these cases: the model leaves " + (isOne ? "it" : "them") + " out, and " +
               others + (partners.size() == 1 ? " takes" : " take") +
               (isOne ? " its effect; " : " their effects; ") +
               (std::all_of(all.begin(), all.end(), isSquare)
                    ? "add cases where only one of " + names(inputs) +
                          " differs from the middle of its range."
                    : "add cases with other combinations of " + names(inputs) + ".");
    }
    return {"inestimableTerms", Finding::Warning, inputs, text};
}

/** Squares of two values and products with an input that varies in one case alone: ColumnFindings
 *  speaks of these inputs. */
bool isSaidOfColumn(const Term& term, const DiagnosedCases& cases)
{
    return std::any_of(term.begin(), term.end(), [&](std::size_t input) {
        const Column& column = cases.inputs[input];
        return column.isTwoValued() && (isSquare(term) || column.onlyOtherRow());
    });
}
} // namespace

std::optional<std::size_t> TermFindings::rank(const DiagnosedCases& cases)
{
    const std::optional<TermSeparation> separation = separationOf(cases);
    return separation ? std::optional(separation->rank) : std::nullopt;
}

std::vector<Finding> TermFindings::find(const DiagnosedCases& cases)
{
    constexpr std::size_t maxSentences = 3;
    const std::optional<TermSeparation> separation = separationOf(cases);
    if (!separation || cases.count() < cases.termCount()) {
        return {};
    }
    std::vector<std::pair<std::vector<Term>, std::vector<Term>>> groups; // of the same partners
    std::vector<Term> all;
    for (const TermSeparation::Dependence& dependence : separation->dependences) {
        if (isSaidOfColumn(dependence.term, cases)) {
            continue;
        }
        all.push_back(dependence.term);
        const std::vector<Term> partners = partnersOf(dependence);
        const auto group = std::find_if(groups.begin(), groups.end(), [&](const auto& candidate) {
            return candidate.second == partners;
        });
        if (group == groups.end()) {
            groups.push_back({{dependence.term}, partners});
        } else {
            group->first.push_back(dependence.term);
        }
    }
    std::vector<Finding> findings;
    if (groups.size() > maxSentences) {
        return {Finding(
            "inestimableTerms", Finding::Warning, inputsOf(all, cases),
            listOf(all, cases) +
                " cannot be told apart from other terms by these cases: the model leaves them "
                "out; add cases with other combinations of the inputs, or choose fewer terms" +
                settingHint(Setting::Terms) + '.')};
    }
    for (const auto& [terms, partners] : groups) {
        findings.push_back(findingOf(terms, partners, cases));
    }
    return findings;
}
