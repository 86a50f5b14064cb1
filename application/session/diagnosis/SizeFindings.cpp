#include "session/diagnosis/SizeFindings.h"

#include "session/diagnosis/FindingWords.h"
#include "session/diagnosis/TermFindings.h"
#include "session/text/SettingHint.h"

#include <mirel_fitting/cases/ReplicatedCases.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

using Column = DiagnosedCases::Column;

namespace {
std::string nameOf(PolynomialTerms terms)
{
    switch (terms) {
    case PolynomialTerms::Linear:
        return "linear response surface of ";
    case PolynomialTerms::Interactions:
        return "response surface with interactions of ";
    case PolynomialTerms::Chosen:
        return "response surface of the chosen terms and ";
    default:
        return "quadratic response surface of ";
    }
}

/** @param columns one number per case each: those of inputs, and of blocks. */
std::size_t differentCases(const std::vector<const double*>& columns, std::size_t count)
{
    return count - ReplicatedCases(columns, count).degreesOfFreedom();
}

/** The columns of the design that k blocks take: k - 1. */
std::size_t blockTerms(const DiagnosedCases& cases)
{
    return cases.blocks.empty() ? 0 : distinctValues(cases.blocks, cases.count()) - 1;
}

/** ", with a third value of A and B for their squares" where they have two. */
std::string thirdValues(const DiagnosedCases& cases)
{
    constexpr std::size_t minCases = 4; // fewer have two values by chance
    if (cases.count() < minCases) {
        return "";
    }
    const std::vector<std::string> twoValued = cases.twoValuedInputs();
    if (cases.responseSurface.terms != PolynomialTerms::Quadratic || twoValued.empty()) {
        return "";
    }
    return ", with a third value of " + FindingWords::names(twoValued) +
           (twoValued.size() == 1 ? " for its square," : " for their squares,");
}

/** Whether the cases determine the terms of first order and the products, but no more. */
bool determineInteractions(const DiagnosedCases& cases, std::size_t rank)
{
    if (cases.responseSurface.terms != PolynomialTerms::Quadratic) {
        return false;
    }
    DiagnosedCases smaller = cases;
    smaller.responseSurface.terms = PolynomialTerms::Interactions;
    return TermFindings::rank(smaller) == rank && smaller.termCount() == rank;
}

std::vector<Finding> tooFewCases(const std::string& text)
{
    return {Finding("tooFewCases", Finding::Warning, {}, text)};
}
} // namespace

std::vector<Finding> SizeFindings::find(const DiagnosedCases& cases)
{
    const auto inputs = static_cast<std::size_t>(
        std::count_if(cases.inputs.begin(), cases.inputs.end(),
                      [](const Column& input) { return !input.isConstant(); }));
    if (inputs == 0) {
        return {};
    }
    if (cases.isKriging) {
        const std::size_t wanted = 2 * inputs;
        const std::size_t different = cases.count() > wanted * 10
                                          ? cases.count()
                                          : differentCases(pointersTo(cases.inputs), cases.count());
        if (different >= wanted) {
            return {};
        }
        return tooFewCases(countedText(different, "different case") +
                           (different == 1 ? " is" : " are") + " few for Kriging of " +
                           countedText(inputs, "input") +
                           ": it cannot find out which inputs matter; it takes " +
                           std::to_string(wanted) + " at least and " + std::to_string(10 * inputs) +
                           " to be good, or fewer inputs" + settingHint(Setting::Inputs) + '.');
    }

    const std::size_t terms = cases.termCount();
    const std::size_t ofBlocks = blockTerms(cases);
    const std::size_t columns = terms + ofBlocks; // of the design
    if (cases.count() > columns + 2 && cases.count() > 10 * terms) {
        return {};
    }
    std::vector<const double*> values = pointersTo(cases.inputs);
    const std::size_t points = differentCases(values, cases.count());
    if (ofBlocks > 0) {
        values.push_back(cases.blocks.data());
    }
    // The polynomial needs different points; the same point in another block is another case.
    const std::size_t different = points < terms ? points : differentCases(values, cases.count());
    const std::string model = nameOf(cases.responseSurface.terms) + countedText(inputs, "input");
    const std::string blocks =
        ofBlocks == 0 ? "" : " (" + std::to_string(ofBlocks) + " of the blocks)";
    const std::string wanted = std::to_string(columns) + " terms" + blocks;
    const std::optional<std::size_t> rank = TermFindings::rank(cases);
    if (rank && *rank < std::min(points, terms)) {
        // More cases on the same levels would not help: TermFindings says what does.
        const bool hasTwoLevels =
            std::all_of(cases.inputs.begin(), cases.inputs.end(),
                        [](const Column& input) { return distinctValues(input.values, 3) <= 2; });
        // The fit falls back to the interactions of two levels, and says so.
        if (cases.count() >= columns ||
            (hasTwoLevels && cases.count() > *rank && determineInteractions(cases, *rank))) {
            return {};
        }
        return tooFewCases(countedText(cases.count(), "case") + " for the " + wanted + " of a " +
                           model + ": all of second order are left out; choose fewer terms" +
                           settingHint(Setting::Terms) +
                           ", or add cases with other combinations of the inputs, up to " +
                           std::to_string(columns) + " at least.");
    }
    if (different < terms && different <= inputs + ofBlocks) {
        return tooFewCases(
            countedText(different, "different case") + (different == 1 ? " does" : " do") +
            " not even determine the linear terms of " + countedText(inputs, "input") +
            ", which take " + std::to_string(inputs + 1 + ofBlocks) + blocks +
            ": the model is the mean of the cases; name the inputs that matter" +
            settingHint(Setting::Inputs) + ", or try Kriging" +
            settingHint(Setting::Model, "kriging") +
            (inputs > 2 * different ? "; if the variables stand in rows, write them in columns."
                                    : "."));
    }
    if (different < columns) {
        const std::string smaller =
            cases.responseSurface.terms == PolynomialTerms::Linear
                ? "add them or choose fewer inputs" + settingHint(Setting::Inputs)
                : "add them or choose fewer terms" + settingHint(Setting::Terms);
        return tooFewCases(countedText(different, "different case") +
                           (different == 1 ? " does" : " do") + " not determine the " + wanted +
                           " of a " + model + ": terms are left out; " + std::to_string(columns) +
                           " cases would do" + thirdValues(cases) + " and " +
                           std::to_string(columns + terms / 2 + 1) +
                           " would leave some for the error; " + smaller + ".");
    }
    if (cases.count() == columns) {
        return {Finding(
            "saturatedFit", Finding::Warning, {},
            "A " + model + " has as many terms as there are cases, " + std::to_string(columns) +
                blocks +
                ": it passes through all of them, and no case is left to estimate its error "
                "from; add cases, or choose fewer terms" +
                settingHint(Setting::Terms) + '.')};
    }
    if (cases.count() <= columns + 2) {
        const std::size_t spare = cases.count() - columns;
        return {Finding("fewDegreesOfFreedom", Finding::Note, {},
                        "A " + model + " has " + wanted + ", and there " +
                            (spare == 1 ? "is 1 case" : "are 2 cases") +
                            " more: its errors and p-values rest on " +
                            (spare == 1 ? "that one" : "these two") +
                            "; add cases, or choose fewer terms" + settingHint(Setting::Terms) +
                            '.')};
    }
    return {};
}
