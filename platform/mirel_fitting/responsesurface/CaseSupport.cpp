#include <mirel_fitting/responsesurface/CaseSupport.h>

#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/machine/OrderedChunks.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr std::size_t pointsPerChunk = 4096; // some milliseconds

/** Within 2 % of the ranges from a case, of central composite, Box-Behnken and Latin hypercube
 *  designs, leverages reach 1.3 times the largest of the cases; at corners that the cases lack, and
 *  off a relation of inputs, many times it. */
constexpr double supportedLeverage = 1.5;

/** By how much a relation may be violated, relative to the range of the dropped term. A
 * second-order one changes by 4 % for 2 % of the range of an input, and a relation may have
 * several. */
constexpr double negligibleOfLinear = 0.01;
constexpr double negligibleOfSecondOrder = 0.05;

constexpr std::size_t maxRelations = 20; // each costs as much as a term of the prediction

/** Whether a term is the square of an input that has two levels: one with the constant and the
 *  input. */
bool isSquareOfTwoLevels(const QuadraticBasis& basis, const PolynomialFit::Dependence& dependence)
{
    const QuadraticBasis::Term& inputs = basis.terms()[dependence.term];
    if (!inputs.isSquare()) {
        return false;
    }
    for (std::size_t term = 1; term < basis.size(); ++term) {
        if (term != 1 + inputs.first &&
            std::fabs(dependence.combination[term]) > PolynomialFit::Dependence::rounding) {
            return false;
        }
    }
    return true;
}

} // namespace

CaseSupport::CaseSupport(const PolynomialFit& fit, const CaseRanges& ranges)
    : fit(fit), ranges(ranges)
{
    for (const PolynomialFit::Dependence& one : fit.dependences()) {
        if (relations.size() == maxRelations) {
            break;
        }
        // What depends on the block is no relation of the inputs.
        if (isSquareOfTwoLevels(fit.basis(), one) || one.involvesBlocks(fit.basis())) {
            continue;
        }
        Relation relation = {{{one.term, -1.0}}, tolerance(one.term)};
        for (std::size_t term = 0; term < fit.basis().size(); ++term) {
            if (std::fabs(one.combination[term]) > PolynomialFit::Dependence::rounding) {
                relation.coefficients.emplace_back(term, one.combination[term]);
            }
        }
        relations.push_back(std::move(relation));
    }
}

double CaseSupport::tolerance(std::size_t term) const
{
    const auto range = [&](std::size_t input) {
        const ColumnScale& scale = fit.inputScales()[input];
        return 2.0 * (scale.halfRange() / scale.unit());
    };
    const QuadraticBasis::Term& inputs = fit.basis().terms()[term];
    return inputs.order() == 1
               ? negligibleOfLinear * range(inputs.first)
               : negligibleOfSecondOrder * range(inputs.first) * range(inputs.second);
}

std::vector<char> CaseSupport::unsupported(const std::vector<double*>& points,
                                           std::size_t count) const
{
    std::vector<char> flags(count, 0);
    const std::size_t chunks = (count + pointsPerChunk - 1) / pointsPerChunk;
    OrderedChunks::runEach(chunks, threadCount(), [&] {
        return [&, columns = std::vector<std::vector<double>>(points.size(),
                                                              std::vector<double>(pointsPerChunk))](
                   std::size_t chunk) mutable {
            const std::size_t first = chunk * pointsPerChunk;
            const std::size_t rows = std::min(pointsPerChunk, count - first);
            for (std::size_t input = 0; input < points.size(); ++input) {
                ranges.clamp(input, points[input] + first, rows, columns[input].data());
            }
            judge(columns, rows, flags.data() + first);
        };
    });
    return flags;
}

void CaseSupport::judge(std::vector<std::vector<double>>& columns, std::size_t count,
                        char* flags) const
{
    std::vector<double*> pointers;
    for (std::vector<double>& column : columns) {
        pointers.push_back(column.data());
    }
    std::vector<double> leverages(count);
    fit.variances(pointers, count, leverages.data());
    const double largest = supportedLeverage * fit.largestVariance();
    for (std::size_t i = 0; i < count; ++i) {
        flags[i] = leverages[i] > largest ? 1 : 0;
    }
    if (relations.empty()) {
        return;
    }
    for (std::size_t input = 0; input < columns.size(); ++input) {
        fit.inputScales()[input].apply(columns[input].data(), count, columns[input].data());
    }
    const std::vector<const double*> scaled(pointers.begin(), pointers.end());
    std::vector<double> values(count);
    std::vector<double> differences(count);
    for (const Relation& relation : relations) {
        // A leverage that is not a number marks a point that is not finite.
        std::transform(leverages.begin(), leverages.end(), differences.begin(),
                       [](double leverage) { return 0.0 * leverage; });
        for (const auto& [term, coefficient] : relation.coefficients) {
            fit.basis().evaluateTerm(term, scaled.data(), count, values.data());
            for (std::size_t i = 0; i < count; ++i) {
                differences[i] += coefficient * values[i];
            }
        }
        for (std::size_t i = 0; i < count; ++i) {
            flags[i] |= std::fabs(differences[i]) > relation.tolerance ? 1 : 0;
        }
    }
}
