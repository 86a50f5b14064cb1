#include "session/diagnosis/TermFindings.h"

#include "session/diagnosis/FindingWords.h"

#include <mirel_fitting/TermFormula.h>
#include <mirel_fitting/numerics/OrthonormalColumns.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <utility>

using Column = DiagnosedCases::Column;
using FindingWords::names;

namespace {
using Numbers = std::vector<double>;
using Term = TermFormula::Term;

bool isSquare(const Term& term)
{
    return term.size() == 2 && term[0] == term[1];
}

/** All but the constant, in the order in which the fit decides which to keep: linear ones, squares,
 *  products. Constant inputs have none. */
std::vector<Term> termsOf(const DiagnosedCases& cases)
{
    const std::size_t inputs = cases.inputs.size();
    std::vector<Term> terms;
    if (cases.responseSurface.terms == PolynomialTerms::Chosen) {
        terms = TermFormula(cases.responseSurface.formula, inputs).terms();
    } else {
        for (std::size_t i = 0; i < inputs; ++i) {
            terms.push_back({i});
            for (std::size_t j = i; j < inputs; ++j) {
                const bool isWanted =
                    cases.responseSurface.terms == PolynomialTerms::Quadratic ||
                    (cases.responseSurface.terms == PolynomialTerms::Interactions && i != j);
                if (isWanted) {
                    terms.push_back({i, j});
                }
            }
        }
    }
    const auto isConstant = [&](std::size_t input) { return cases.inputs[input].isConstant(); };
    terms.erase(std::remove_if(terms.begin(), terms.end(),
                               [&](const Term& term) {
                                   return std::any_of(term.begin(), term.end(), isConstant);
                               }),
                terms.end());
    std::stable_sort(terms.begin(), terms.end(), [](const Term& left, const Term& right) {
        const auto order = [](const Term& term) {
            return term.size() == 1 ? 0 : isSquare(term) ? 1 : 2;
        };
        return order(left) < order(right);
    });
    return terms;
}

bool areFewEnough(const DiagnosedCases& cases)
{
    constexpr std::size_t maxTerms = 300;
    constexpr std::size_t maxCases = 100000;
    constexpr double maxWork = 1e8;
    const std::size_t inputs = cases.inputs.size();
    if (cases.isKriging || cases.count() == 0 || cases.count() > maxCases || inputs > maxTerms) {
        return false;
    }
    const double terms = static_cast<double>(termsOf(cases).size() + 1);
    return terms <= maxTerms && static_cast<double>(cases.count()) * terms * terms <= maxWork;
}

/** The terms at the cases, one after the other: those that are sums of earlier ones are set apart.
 */
class SeparatedTerms
{
public:
    explicit SeparatedTerms(const DiagnosedCases& cases) : SeparatedTerms(cases, termsOf(cases)) {}

    struct Lost
    {
        Term term;
        std::vector<Term> partners; ///< what it cannot be told apart from
    };

    std::vector<Lost> lost; ///< without terms of inputs that are lost themselves
    std::size_t count;      ///< of terms, with the constant
    std::size_t rank() const { return kept.size(); }

private:
    SeparatedTerms(const DiagnosedCases& cases, const std::vector<Term>& terms);

    void add(const Term& term);
    std::vector<Term> partnersOf(const Term& term, const Numbers& coefficients) const;

    std::size_t rows;
    std::vector<Numbers> coded;
    OrthonormalColumns columns;
    std::vector<Term> kept;
    std::set<std::size_t> lostInputs;
};

SeparatedTerms::SeparatedTerms(const DiagnosedCases& cases, const std::vector<Term>& terms)
    : count(terms.size() + 1), rows(cases.count()), columns(rows, count)
{
    for (const Column& input : cases.inputs) {
        Numbers& values = coded.emplace_back(input.values);
        const double middle = input.minimum() / 2.0 + input.maximum() / 2.0;
        const double half = input.maximum() / 2.0 - input.minimum() / 2.0;
        for (double& value : values) {
            value = half > 0.0 ? (value - middle) / half : 0.0;
        }
    }
    add({});
    for (const Term& term : terms) {
        add(term);
    }
}

void SeparatedTerms::add(const Term& term)
{
    constexpr double minShare = 1e-8; // of the column: less is rounding
    if (std::any_of(term.begin(), term.end(),
                    [&](std::size_t input) { return lostInputs.count(input) > 0; })) {
        return;
    }
    Numbers column(rows, 1.0);
    for (const std::size_t input : term) {
        for (std::size_t row = 0; row < rows; ++row) {
            column[row] *= coded[input][row];
        }
    }
    if (columns.append(column.data(), minShare)) {
        kept.push_back(term);
    } else if (term.size() == 1) {
        lostInputs.insert(term[0]);
    } else {
        lost.push_back({term, partnersOf(term, columns.solve(column.data()))});
    }
}

/** The terms whose sum it is, without those that are only there since the inputs are coded about
 *  the middle of their ranges. @param coefficients of the term in the kept ones. */
std::vector<Term> SeparatedTerms::partnersOf(const Term& term, const Numbers& coefficients) const
{
    constexpr double smallest = 1e-6;
    std::vector<Term> partners;
    std::set<std::size_t> inputs(term.begin(), term.end());
    for (std::size_t k = kept.size(); k-- > 0;) { // terms of second order first
        const Term& other = kept[k];
        const bool isNew = std::any_of(other.begin(), other.end(),
                                       [&](std::size_t input) { return inputs.count(input) == 0; });
        if (std::fabs(coefficients[k]) > smallest && (other.size() == 2 || isNew)) {
            partners.push_back(other);
            inputs.insert(other.begin(), other.end());
        }
    }
    std::reverse(partners.begin(), partners.end());
    return partners;
}

/** "A * B", "A^2", as --terms reads them. */
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
        const Numbers& values = cases.inputs[input].values;
        if (distinctValues(values, 3) != 2) {
            return false;
        }
        const auto first = std::count(values.begin(), values.end(), values.front());
        return isSquare(term) || first == 1 ||
               first + 1 == static_cast<std::ptrdiff_t>(values.size());
    });
}
} // namespace

std::optional<std::size_t> TermFindings::rank(const DiagnosedCases& cases)
{
    if (!areFewEnough(cases)) {
        return std::nullopt;
    }
    return SeparatedTerms(cases).rank();
}

std::vector<Finding> TermFindings::find(const DiagnosedCases& cases)
{
    constexpr std::size_t maxSentences = 3;
    if (!areFewEnough(cases)) {
        return {};
    }
    const SeparatedTerms separated(cases);
    if (cases.count() < separated.count) {
        return {};
    }
    std::vector<std::pair<std::vector<Term>, std::vector<Term>>> groups; // of the same partners
    std::vector<Term> all;
    for (const SeparatedTerms::Lost& lost : separated.lost) {
        if (isSaidOfColumn(lost.term, cases)) {
            continue;
        }
        all.push_back(lost.term);
        const auto group = std::find_if(groups.begin(), groups.end(), [&](const auto& candidate) {
            return candidate.second == lost.partners;
        });
        if (group == groups.end()) {
            groups.push_back({{lost.term}, lost.partners});
        } else {
            group->first.push_back(lost.term);
        }
    }
    std::vector<Finding> findings;
    if (groups.size() > maxSentences) {
        return {{"inestimableTerms", Finding::Warning, inputsOf(all, cases),
                 listOf(all, cases) +
                     " cannot be told apart from other terms by these cases: the model leaves them "
                     "out; add cases with other combinations of the inputs, or choose fewer terms "
                     "with --terms."}};
    }
    for (const auto& [terms, partners] : groups) {
        findings.push_back(findingOf(terms, partners, cases));
    }
    return findings;
}
