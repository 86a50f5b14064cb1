#include "session/diagnosis/SizeFindings.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string>

using Column = DiagnosedCases::Column;

namespace {
std::size_t termsOf(PolynomialTerms terms, std::size_t inputs)
{
    switch (terms) {
    case PolynomialTerms::Linear:
        return 1 + inputs;
    case PolynomialTerms::Interactions:
        return 1 + inputs + inputs * (inputs - 1) / 2;
    default:
        return (inputs + 1) * (inputs + 2) / 2;
    }
}

std::string nameOf(PolynomialTerms terms)
{
    return terms == PolynomialTerms::Linear         ? "linear response surface"
           : terms == PolynomialTerms::Interactions ? "response surface with interactions"
                                                    : "quadratic response surface";
}

std::size_t differentCases(const DiagnosedCases& cases)
{
    std::vector<std::size_t> rows(cases.count());
    std::iota(rows.begin(), rows.end(), std::size_t(0));
    const auto isBefore = [&](std::size_t left, std::size_t right) {
        for (const Column& column : cases.inputs) {
            if (column.values[left] != column.values[right]) {
                return column.values[left] < column.values[right];
            }
        }
        return false;
    };
    std::sort(rows.begin(), rows.end(), isBefore);
    std::size_t different = rows.empty() ? 0 : 1;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        different += isBefore(rows[i - 1], rows[i]) ? 1 : 0;
    }
    return different;
}

std::string counted(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}
} // namespace

std::vector<Finding> SizeFindings::find(const DiagnosedCases& cases)
{
    const std::size_t inputs = static_cast<std::size_t>(
        std::count_if(cases.inputs.begin(), cases.inputs.end(), [&](const Column& input) {
            return !input.values.empty() && input.minimum() != input.maximum();
        }));
    if (inputs == 0) {
        return {};
    }
    if (cases.isKriging) {
        const std::size_t wanted = 2 * inputs;
        const std::size_t different =
            cases.count() > wanted * 10 ? cases.count() : differentCases(cases);
        if (different >= wanted) {
            return {};
        }
        return {{"tooFewCases",
                 Finding::Warning,
                 {},
                 counted(different, "different case") + (different == 1 ? " is" : " are") +
                     " few for Kriging of " + counted(inputs, "input") +
                     ": it cannot find out which inputs matter; it takes " +
                     std::to_string(wanted) + " at least and " + std::to_string(10 * inputs) +
                     " to be good, or fewer inputs (-x)."}};
    }

    const std::size_t terms = termsOf(cases.terms, inputs);
    if (cases.count() > terms + 2 && cases.count() > 10 * terms) {
        return {};
    }
    const std::size_t different = differentCases(cases);
    const std::string model = nameOf(cases.terms) + " of " + counted(inputs, "input");
    const std::string wanted = std::to_string(terms) + " terms";
    if (different < terms) {
        const std::string smaller = cases.terms == PolynomialTerms::Linear
                                        ? "add them or leave inputs out of -x"
                                        : "add them or choose fewer terms with --terms";
        return {{"tooFewCases",
                 Finding::Warning,
                 {},
                 counted(different, "different case") + (different == 1 ? " does" : " do") +
                     " not determine the " + wanted + " of a " + model + ": terms are left out; " +
                     std::to_string(terms) + " cases would do and " +
                     std::to_string(terms + terms / 2 + 1) + " would leave some for the error; " +
                     smaller + "."}};
    }
    if (cases.count() == terms) {
        return {{"saturatedFit",
                 Finding::Warning,
                 {},
                 "A " + model + " has as many terms as there are cases, " + std::to_string(terms) +
                     ": it passes through all of them, and nothing is left to tell its error by; "
                     "add cases, or choose fewer terms with --terms."}};
    }
    if (cases.count() <= terms + 2) {
        const std::size_t spare = cases.count() - terms;
        return {{"fewDegreesOfFreedom",
                 Finding::Note,
                 {},
                 "A " + model + " has " + wanted + ", and there " +
                     (spare == 1 ? "is 1 case" : "are 2 cases") +
                     " more: its errors and p-values rest on " +
                     (spare == 1 ? "that one" : "these two") +
                     "; add cases, or choose fewer terms with --terms."}};
    }
    return {};
}
