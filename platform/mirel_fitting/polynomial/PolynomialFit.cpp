#include <mirel_fitting/polynomial/PolynomialFit.h>

#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>
#include <mirel_fitting/numerics/BlockedLeastSquares.h>
#include <mirel_fitting/polynomial/NormalEquations.h>
#include <mirel_fitting/polynomial/ResidualPass.h>

#include <cblas.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace {

constexpr std::size_t rowsPerBlock = DesignPass::rowsPerBlock;

/** The blocks and the wanted terms, squares before products: of terms that cannot be separated, the
 *  first ones are kept. */
std::vector<std::size_t> preferenceOrder(const QuadraticBasis& basis, std::size_t blockColumns,
                                         const std::vector<char>& isWanted)
{
    std::vector<std::size_t> order;
    std::vector<std::size_t> products;
    order.reserve(basis.size() + blockColumns);
    for (std::size_t term = 0; term < basis.size(); ++term) {
        if (!isWanted.empty() && !isWanted[term]) {
            continue;
        }
        const QuadraticBasis::Term& inputs = basis.terms()[term];
        const bool isProduct = inputs.order() == 2 && !inputs.isSquare();
        (isProduct ? products : order).push_back(term);
        for (std::size_t block = 0; term == 0 && block < blockColumns; ++block) {
            order.push_back(basis.size() + block);
        }
    }
    order.insert(order.end(), products.begin(), products.end());
    return order;
}

/**
 * The linear terms of its inputs are the parents of a second-order term: an input whose linear term
 * is dropped is a combination of others, and so is every product with it. Such hierarchical models
 * are also the only ones that do not depend on the origins of the inputs.
 */
std::vector<BlockedLeastSquares::Column> describeColumns(const QuadraticBasis& basis,
                                                         const std::vector<std::size_t>& order,
                                                         const std::vector<ColumnScale>& scales)
{
    std::vector<BlockedLeastSquares::Column> columns(order.size());
    std::vector<std::size_t> columnOfTerm(basis.size(), BlockedLeastSquares::Column::noParent);
    for (std::size_t column = 0; column < order.size(); ++column) {
        if (order[column] < basis.size()) {
            columnOfTerm[order[column]] = column;
        }
    }
    for (std::size_t column = 0; column < order.size(); ++column) {
        if (order[column] >= basis.size()) {
            continue;
        }
        const QuadraticBasis::Term& inputs = basis.terms()[order[column]];
        if (inputs.order() == 0) {
            continue;
        }
        columns[column].rounding = scales[inputs.first].rounding();
        columns[column].isConstant = scales[inputs.first].isConstantUpToRounding();
        if (inputs.order() == 2) {
            columns[column].rounding += scales[inputs.second].rounding();
            columns[column].parents[0] = columnOfTerm[1 + inputs.first];
            columns[column].parents[1] = columnOfTerm[1 + inputs.second];
        }
    }
    return columns;
}

/** Sums the rows of each chunk by itself, then the chunks in their order.
 *  @tparam LeastSquares has addRows(design, outputs, rows) and merge(). */
template <class LeastSquares>
class AccumulatingPass : public DesignPass
{
public:
    AccumulatingPass(const FitColumns& columns, const std::vector<std::size_t>& terms,
                     LeastSquares& total)
        : DesignPass(columns, terms), total(total), part(empty())
    {}

    void handOver(std::size_t /*chunk*/) override { total.merge(std::move(part)); }

private:
    LeastSquares empty() const { return {terms.size(), columns.outputs.size()}; }

    void begin() override { part = empty(); }

    void addBlock(std::size_t /*firstRow*/, std::size_t rows) override
    {
        part.addRows(design.data(), outputs.data(), rows);
    }

    LeastSquares& total;
    LeastSquares part;
};

template <class LeastSquares>
LeastSquares accumulate(const FitColumns& columns, const std::vector<std::size_t>& terms,
                        double progressFrom, double progressTo)
{
    LeastSquares total(terms.size(), columns.outputs.size());
    const auto makePass = [&] {
        return std::make_unique<AccumulatingPass<LeastSquares>>(columns, terms, total);
    };
    DesignPass::run(columns, makePass, progressFrom, progressTo);
    return total;
}

/** The weighted sum of squares of a column about its mean, both scaled. */
double squaresAboutMean(const double* values, std::size_t count, const ColumnScale& scale,
                        const WeightedBlocks& weights)
{
    constexpr std::size_t lanes = 4; // independent sums hide the latency of the addition
    double scaled[rowsPerBlock];
    const auto sum = [&](const auto& term) {
        double sums[lanes] = {};
        for (std::size_t start = 0; start < count; start += rowsPerBlock) {
            const std::size_t rows = std::min(rowsPerBlock, count - start);
            scale.apply(values + start, rows, scaled);
            for (std::size_t k = 0; k < rows; ++k) {
                sums[k % lanes] += weights.areWeighted()
                                       ? weights.weight(start + k) * term(scaled[k])
                                       : term(scaled[k]);
            }
        }
        return (sums[0] + sums[1]) + (sums[2] + sums[3]);
    };
    const double mean = sum([](double value) { return value; }) / static_cast<double>(count);
    return sum([mean](double value) { return (value - mean) * (value - mean); });
}

} // namespace

PolynomialFit::PolynomialFit(const QuadraticBasis& basis, const std::vector<double*>& independents,
                             const std::vector<double*>& dependents, std::size_t cases,
                             const std::vector<char>& isWanted,
                             std::shared_ptr<const WeightedBlocks> given)
    : polynomial(basis),
      weighting(given != nullptr ? std::move(given) : std::make_shared<WeightedBlocks>()),
      caseCount(cases), wanted(isWanted)
{
    for (const double* column : independents) {
        scales.emplace_back(column, cases);
    }
    std::vector<ColumnScale> outputScales;
    for (const double* column : dependents) {
        fits.emplace_back();
        fits.back().scale = ColumnScale(column, cases);
        fits.back().totalSquares = squaresAboutMean(column, cases, fits.back().scale, *weighting);
        outputScales.push_back(fits.back().scale);
    }
    chooseSample(dependents);

    const FitColumns columns{polynomial, independents, dependents, cases,
                             scales,     outputScales, *weighting};
    const SingleThreadedBlas singleThreaded;
    double progress = 0.0;
    if (!solveNormalEquations(columns, progress)) {
        solveByRotations(columns, progress);
    }
}

bool PolynomialFit::solveNormalEquations(const FitColumns& columns, double& progress)
{
    // Fewer cases take milliseconds in either way, and the rotations keep all digits.
    constexpr std::size_t minCases = 4096;
    // A residual that changes by less, relatively, shows the same digits.
    constexpr double negligible = 1e-10;

    const bool hasConstant = std::any_of(scales.begin(), scales.end(), [](const ColumnScale& s) {
        return s.isConstantUpToRounding();
    });
    if (!wanted.empty() || caseCount < minCases || hasConstant || weighting->columns() > 0) {
        return false;
    }
    std::vector<std::size_t> terms(polynomial.size());
    std::iota(terms.begin(), terms.end(), std::size_t(0));
    progress = 0.4;
    NormalEquations::Solution solution;
    if (!accumulate<NormalEquations>(columns, terms, 0.0, progress).solve(solution)) {
        return false;
    }
    keep(std::move(terms), solution.factor);
    const FitResiduals residuals = computeResiduals(columns, solution.coefficients, progress, 0.7);

    double smallest = std::numeric_limits<double>::infinity();
    for (const FitResiduals::Output& output : residuals.outputs) {
        smallest = std::min(smallest, output.squares);
    }
    const double change = NormalEquations::refine(solution, residuals.gradients);
    const bool isRefined = change > negligible * negligible * smallest;
    store(solution.coefficients,
          isRefined ? computeResiduals(columns, solution.coefficients, 0.7, 1.0) : residuals);
    return true;
}

void PolynomialFit::solveByRotations(const FitColumns& columns, double progress)
{
    const std::vector<std::size_t> order =
        preferenceOrder(polynomial, weighting->columns(), wanted);
    BlockedLeastSquares::Solution solution =
        accumulate<BlockedLeastSquares>(columns, order, progress, 0.7)
            .solve(describeColumns(polynomial, order, scales));

    std::vector<std::size_t> terms;
    for (const std::size_t column : solution.kept) {
        terms.push_back(order[column]);
    }
    keep(std::move(terms), std::move(solution.factor));
    for (const BlockedLeastSquares::Dependence& one : solution.dependences) {
        dependentTerms.push_back({order[one.column], std::vector<double>(this->columns(), 0.0)});
        for (std::size_t k = 0; k < one.combination.size(); ++k) {
            dependentTerms.back().combination[keptTerms[k]] = one.combination[k];
        }
    }
    store(solution.coefficients, computeResiduals(columns, solution.coefficients, 0.7, 1.0));
}

void PolynomialFit::keep(std::vector<std::size_t> terms, std::vector<double> newFactor)
{
    keptTerms = std::move(terms);
    factor = std::move(newFactor);
    // By columns, R (R^-1)_j = e_j: with this inverse, products are as accurate as substitution
    // (Higham: Accuracy and Stability of Numerical Algorithms, 2nd ed., SIAM 2002, 14.2), and BLAS
    // multiplies a block three times as fast as it substitutes.
    const auto order = static_cast<int>(keptTerms.size());
    inverseFactor.assign(factor.size(), 0.0);
    for (std::size_t k = 0; k < keptTerms.size(); ++k) {
        inverseFactor[k * keptTerms.size() + k] = 1.0;
    }
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasUpper, CblasNoTrans, CblasNonUnit, order, order, 1.0,
                factor.data(), order, inverseFactor.data(), order);
    keptFlags.assign(columns(), 0);
    for (const std::size_t term : keptTerms) {
        keptFlags[term] = 1;
    }
}

FitResiduals PolynomialFit::computeResiduals(const FitColumns& columns,
                                             const std::vector<double>& scaledCoefficients,
                                             double progressFrom, double progressTo) const
{
    const FactoredFit fit{keptTerms, inverseFactor, scaledCoefficients};
    FitResiduals residuals;
    const auto makePass = [&] {
        return std::make_unique<ResidualPass>(columns, fit, sample, residuals);
    };
    DesignPass::run(columns, makePass, progressFrom, progressTo);
    return residuals;
}

void PolynomialFit::store(const std::vector<double>& scaledCoefficients, FitResiduals residuals)
{
    const std::size_t kept = keptTerms.size();
    for (std::size_t output = 0; output < fits.size(); ++output) {
        Output& result = fits[output];
        result.coefficients.assign(columns(), 0.0);
        for (std::size_t k = 0; k < kept; ++k) {
            result.coefficients[keptTerms[k]] =
                scaledCoefficients[output * kept + k] * result.scale.unit();
        }
        result.residualSquares = residuals.outputs[output].squares;
        result.press = residuals.outputs[output].press;
        result.residuals = std::move(residuals.outputs[output].ofSampled);
    }
    leverageOfSample = std::move(residuals.leveragesOfSampled);
    // Rounding may take a leverage of 1 beyond it.
    const double largestLeverage = std::min(residuals.largestLeverage, 1.0);
    pressAvailable = !isDeterminedAlone(largestLeverage);
    varianceOfFarthest = weighting->areWeighted() ? residuals.largestVariance : largestLeverage;
}

void PolynomialFit::chooseSample(const std::vector<double*>& dependents)
{
    if (caseCount > maxSampled) {
        sample = stratifiedRows(caseCount, maxSampled);
    }
    for (std::size_t output = 0; output < fits.size(); ++output) {
        for (std::size_t k = 0; k < std::min(caseCount, maxSampled); ++k) {
            fits[output].values.push_back(dependents[output][sampledRow(k)]);
        }
    }
}

bool PolynomialFit::isDeterminedAlone(double leverage)
{
    constexpr double leastOneMinusLeverage = 1e-9; // less is rounding
    return 1.0 - leverage <= leastOneMinusLeverage;
}

bool PolynomialFit::Dependence::involvesBlocks(const QuadraticBasis& basis) const
{
    return std::any_of(combination.begin() + static_cast<std::ptrdiff_t>(basis.size()),
                       combination.end(),
                       [](double coefficient) { return std::fabs(coefficient) > rounding; });
}

std::vector<double> PolynomialFit::coefficientDirection(std::size_t k) const
{
    const std::size_t kept = keptTerms.size();
    std::vector<double> direction(columns(), 0.0);
    for (std::size_t i = 0; i <= k; ++i) {
        direction[keptTerms[i]] = inverseFactor[k * kept + i];
    }
    return direction;
}

void PolynomialFit::variances(const std::vector<double*>& inputs, std::size_t count,
                              double* result) const
{
    const auto terms = static_cast<int>(keptTerms.size());
    const SingleThreadedBlas singleThreaded;
    std::vector<double> scaledInputs(inputs.size() * rowsPerBlock);
    std::vector<const double*> inputColumns;
    for (std::size_t input = 0; input < inputs.size(); ++input) {
        inputColumns.push_back(scaledInputs.data() + input * rowsPerBlock);
    }
    std::vector<double> design(keptTerms.size() * rowsPerBlock);
    for (std::size_t start = 0; start < count; start += rowsPerBlock) {
        const std::size_t rows = std::min(rowsPerBlock, count - start);
        std::fill_n(result + start, rows, 0.0);
        for (std::size_t input = 0; input < inputs.size(); ++input) {
            scales[input].apply(inputs[input] + start, rows,
                                scaledInputs.data() + input * rowsPerBlock);
            // 0 * x is 0 for a finite x, else NaN: also for an input without influence.
            for (std::size_t row = 0; row < rows; ++row) {
                result[start + row] += 0.0 * inputs[input][start + row];
            }
        }
        for (std::size_t column = 0; column < keptTerms.size(); ++column) {
            double* const values = design.data() + column * rowsPerBlock;
            if (isOfBlocks(keptTerms[column])) {
                std::fill_n(values, rows, 0.0);
            } else {
                polynomial.evaluateTerm(keptTerms[column], inputColumns.data(), rows, values);
            }
        }
        cblas_dtrmm(CblasColMajor, CblasRight, CblasUpper, CblasNoTrans, CblasNonUnit,
                    static_cast<int>(rows), terms, 1.0, inverseFactor.data(), terms, design.data(),
                    static_cast<int>(rowsPerBlock));
        for (std::size_t column = 0; column < keptTerms.size(); ++column) {
            const double* values = design.data() + column * rowsPerBlock;
            for (std::size_t row = 0; row < rows; ++row) {
                result[start + row] += values[row] * values[row];
            }
        }
    }
}
