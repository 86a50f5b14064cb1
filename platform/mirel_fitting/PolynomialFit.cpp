#include <mirel_fitting/PolynomialFit.h>

#include <mirel_fitting/BlockedLeastSquares.h>
#include <mirel_fitting/FitProgress.h>

#include <cblas.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t rowsPerBlock = BlockedLeastSquares::rowsPerBlock;

/** Terms in the order in which they are preferred: what an earlier one explains, a later one need
 *  not. Constant and linear terms stay where the basis has them. */
std::vector<std::size_t> preferenceOrder(const QuadraticBasis& basis)
{
    std::vector<std::size_t> order;
    std::vector<std::size_t> products;
    order.reserve(basis.size());
    for (std::size_t term = 0; term < basis.size(); ++term) {
        const QuadraticBasis::Term& inputs = basis.terms()[term];
        const bool isProduct =
            inputs.second != QuadraticBasis::noInput && inputs.first != inputs.second;
        (isProduct ? products : order).push_back(term);
    }
    order.insert(order.end(), products.begin(), products.end());
    return order;
}

/**
 * A term of second order is worth keeping only beside the linear terms of its inputs: where one of
 * those is dropped, the input is a combination of others, and so is every product with it. Besides,
 * only such a set of terms stays the same when an input is shifted.
 */
std::vector<BlockedLeastSquares::Column> describe(const QuadraticBasis& basis,
                                                  const std::vector<std::size_t>& order,
                                                  const std::vector<ColumnScale>& scales)
{
    std::vector<BlockedLeastSquares::Column> columns(order.size());
    for (std::size_t column = 0; column < order.size(); ++column) {
        const QuadraticBasis::Term& inputs = basis.terms()[order[column]];
        if (inputs.first == QuadraticBasis::noInput) {
            continue;
        }
        columns[column].rounding = scales[inputs.first].rounding();
        if (inputs.second != QuadraticBasis::noInput) {
            columns[column].rounding += scales[inputs.second].rounding();
            columns[column].parents[0] = 1 + inputs.first;
            columns[column].parents[1] = 1 + inputs.second;
        }
    }
    return columns;
}

} // namespace

/** Walks over the rows in blocks of scaled inputs and outputs. */
class PolynomialFit::Passes
{
public:
    Passes(PolynomialFit& fit, const std::vector<double*>& independents,
           const std::vector<double*>& dependents)
        : fit(fit), independents(independents), dependents(dependents),
          scaledInputs(independents.size() * rowsPerBlock),
          scaledOutputs(dependents.size() * rowsPerBlock),
          design(fit.polynomial.size() * rowsPerBlock)
    {
        for (std::size_t input = 0; input < independents.size(); ++input) {
            inputColumns.push_back(scaledInputs.data() + input * rowsPerBlock);
        }
    }

    void measure()
    {
        for (const double* column : independents) {
            fit.scales.emplace_back(column, fit.caseCount);
        }
        for (const double* column : dependents) {
            fit.fits.emplace_back();
            fit.fits.back().scale = ColumnScale(column, fit.caseCount);
        }
    }

    void factorise()
    {
        const std::vector<std::size_t> order = preferenceOrder(fit.polynomial);
        BlockedLeastSquares leastSquares(order.size(), dependents.size());
        forEachBlock(0.0, 0.7, [&](std::size_t rows) {
            fillDesign(order, rows);
            leastSquares.addRows(design.data(), scaledOutputs.data(), rows);
        });

        const BlockedLeastSquares::Solution solution =
            leastSquares.solve(describe(fit.polynomial, order, fit.scales));
        fit.keptFlags.assign(fit.polynomial.size(), 0);
        for (const std::size_t column : solution.kept) {
            fit.keptTerms.push_back(order[column]);
            fit.keptFlags[order[column]] = 1;
        }
        fit.factor = solution.factor;
        scaledCoefficients = solution.coefficients;
        for (std::size_t output = 0; output < dependents.size(); ++output) {
            fit.fits[output].totalSquares = solution.totalSquares[output];
        }
    }

    void sumResiduals()
    {
        // A case of larger leverage is fitted exactly, up to rounding, whatever its value is.
        constexpr double smallestFreedom = 1e-9;
        const auto terms = static_cast<int>(fit.keptTerms.size());
        const auto outputs = static_cast<int>(dependents.size());
        const auto ld = static_cast<int>(rowsPerBlock);
        std::vector<double> freedom(rowsPerBlock);

        forEachBlock(0.7, 1.0, [&](std::size_t rows) {
            const auto m = static_cast<int>(rows);
            fillDesign(fit.keptTerms, rows);
            if (outputs > 0) {
                cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, m, outputs, terms, -1.0,
                            design.data(), ld, scaledCoefficients.data(), terms, 1.0,
                            scaledOutputs.data(), ld);
            }
            cblas_dtrsm(CblasColMajor, CblasRight, CblasUpper, CblasNoTrans, CblasNonUnit, m, terms,
                        1.0, fit.factor.data(), terms, design.data(), ld);
            std::fill_n(freedom.begin(), rows, 1.0);
            for (int term = 0; term < terms; ++term) {
                const double* column = &design[static_cast<std::size_t>(term) * rowsPerBlock];
                for (std::size_t row = 0; row < rows; ++row) {
                    freedom[row] -= column[row] * column[row];
                }
            }
            fit.pressAvailable =
                fit.pressAvailable &&
                *std::min_element(freedom.begin(), freedom.begin() + static_cast<long>(rows)) >
                    smallestFreedom;
            addSquares(freedom, rows);
        });
    }

    /** From scaled outputs to the outputs' units, and from kept terms to all. */
    void storeCoefficients()
    {
        const std::size_t kept = fit.keptTerms.size();
        for (std::size_t output = 0; output < dependents.size(); ++output) {
            Output& result = fit.fits[output];
            result.coefficients.assign(fit.polynomial.size(), 0.0);
            for (std::size_t k = 0; k < kept; ++k) {
                result.coefficients[fit.keptTerms[k]] =
                    scaledCoefficients[output * kept + k] * result.scale.unit();
            }
        }
    }

private:
    template <typename Action>
    void forEachBlock(double from, double to, const Action& action)
    {
        constexpr std::size_t blocksPerReport = 64;
        for (std::size_t start = 0; start < fit.caseCount; start += rowsPerBlock) {
            if (start / rowsPerBlock % blocksPerReport == 0) {
                const double done = static_cast<double>(start) / static_cast<double>(fit.caseCount);
                FitProgress::report(from + (to - from) * done, "fitting the response surface");
            }
            const std::size_t rows = std::min(rowsPerBlock, fit.caseCount - start);
            for (std::size_t input = 0; input < independents.size(); ++input) {
                fit.scales[input].apply(independents[input] + start, rows,
                                        scaledInputs.data() + input * rowsPerBlock);
            }
            for (std::size_t output = 0; output < dependents.size(); ++output) {
                fit.fits[output].scale.apply(dependents[output] + start, rows,
                                             scaledOutputs.data() + output * rowsPerBlock);
            }
            action(rows);
        }
    }

    void fillDesign(const std::vector<std::size_t>& terms, std::size_t rows)
    {
        for (std::size_t column = 0; column < terms.size(); ++column) {
            fit.polynomial.evaluateTerm(terms[column], inputColumns.data(), rows,
                                        design.data() + column * rowsPerBlock);
        }
    }

    void addSquares(const std::vector<double>& freedom, std::size_t rows)
    {
        for (std::size_t output = 0; output < dependents.size(); ++output) {
            const double* residuals = scaledOutputs.data() + output * rowsPerBlock;
            double squares = 0.0;
            double leftOutSquares = 0.0;
            for (std::size_t row = 0; row < rows; ++row) {
                const double leftOut = residuals[row] / freedom[row];
                squares += residuals[row] * residuals[row];
                leftOutSquares += leftOut * leftOut;
            }
            fit.fits[output].residualSquares += squares;
            fit.fits[output].press += leftOutSquares;
        }
    }

    PolynomialFit& fit;
    const std::vector<double*>& independents;
    const std::vector<double*>& dependents;
    std::vector<double> scaledInputs;
    std::vector<double> scaledOutputs;
    std::vector<double> design;
    std::vector<const double*> inputColumns;
    std::vector<double> scaledCoefficients; // of the kept terms, per output
};

PolynomialFit::PolynomialFit(const QuadraticBasis& basis, const std::vector<double*>& independents,
                             const std::vector<double*>& dependents, std::size_t cases)
    : polynomial(basis), caseCount(cases)
{
    Passes passes(*this, independents, dependents);
    passes.measure();
    passes.factorise();
    passes.sumResiduals();
    passes.storeCoefficients();
}

std::vector<std::vector<double>> PolynomialFit::coefficientDirections() const
{
    const std::size_t kept = keptTerms.size();
    std::vector<std::vector<double>> directions;
    std::vector<double> column(kept);
    for (std::size_t k = 0; k < kept; ++k) {
        std::fill(column.begin(), column.end(), 0.0);
        column[k] = 1.0;
        cblas_dtrsv(CblasColMajor, CblasUpper, CblasNoTrans, CblasNonUnit, static_cast<int>(k + 1),
                    factor.data(), static_cast<int>(kept), column.data(), 1);
        std::vector<double> direction(polynomial.size(), 0.0);
        for (std::size_t i = 0; i <= k; ++i) {
            direction[keptTerms[i]] = column[i];
        }
        directions.push_back(std::move(direction));
    }
    return directions;
}
