#include <mirel_fitting/numerics/BlockedLeastSquares.h>

#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace {

/** Reflections that LAPACK applies together (its nb): few, as a block has few columns. */
std::size_t reflectionsPerPanel(std::size_t columns)
{
    return std::min(columns, std::clamp<std::size_t>(columns / 6, 8, 32));
}

double length(const double* begin, std::size_t count)
{
    return count == 0 ? 0.0 : cblas_dnrm2(static_cast<int>(count), begin, 1);
}

/**
 * One Householder reflection of the rows `first` to `last`, which zeros column `pivot` below row
 * `first`; applied to the columns from `pivot` on and to all of `outputs`.
 */
void reflect(std::vector<double>& matrix, std::size_t columns, std::vector<double>& outputs,
             std::size_t outputCount, std::size_t pivot, std::size_t first, std::size_t last)
{
    const std::size_t rows = last - first + 1;
    double* head = &matrix[pivot * columns + first];
    std::vector<double> reflector(head, head + rows);
    const double norm = std::copysign(length(head, rows), head[0]);
    reflector[0] += norm;
    // |reflector|^2 / 2 = norm * reflector[0]: the reflection is 1 - v v' / (norm v_0).
    const double divisor = norm * reflector[0];
    const auto apply = [&](double* column) {
        double product = 0.0;
        for (std::size_t i = 0; i < rows; ++i) {
            product += reflector[i] * column[i];
        }
        product /= divisor;
        for (std::size_t i = 0; i < rows; ++i) {
            column[i] -= product * reflector[i];
        }
    };
    for (std::size_t column = pivot + 1; column < columns; ++column) {
        apply(&matrix[column * columns + first]);
    }
    for (std::size_t output = 0; output < outputCount; ++output) {
        apply(&outputs[output * columns + first]);
    }
    head[0] = -norm;
    std::fill(head + 1, head + rows, 0.0);
}

} // namespace

BlockedLeastSquares::BlockedLeastSquares(std::size_t columns, std::size_t outputs)
    : columnCount(columns), outputCount(outputs), triangle(columns * columns, 0.0),
      rotatedOutputs(columns * outputs, 0.0),
      reflectorBlock(reflectionsPerPanel(columns) * columns),
      workspace(reflectionsPerPanel(columns) * std::max(columns, outputs))
{}

void BlockedLeastSquares::addRows(double* design, double* outputs, std::size_t rows)
{
    assert(rows <= rowsPerBlock);
    const auto n = static_cast<lapack_int>(columnCount);
    const auto m = static_cast<lapack_int>(rows);
    const auto ld = static_cast<lapack_int>(rowsPerBlock);
    const auto panel = static_cast<lapack_int>(reflectionsPerPanel(columnCount));

    LAPACKE_dtpqrt_work(LAPACK_COL_MAJOR, m, n, 0, panel, triangle.data(), n, design, ld,
                        reflectorBlock.data(), panel, workspace.data());
    rowCount += rows;
    if (outputCount == 0) {
        return;
    }
    LAPACKE_dtpmqrt_work(LAPACK_COL_MAJOR, 'L', 'T', m, static_cast<lapack_int>(outputCount), n, 0,
                         panel, design, ld, reflectorBlock.data(), panel, rotatedOutputs.data(), n,
                         outputs, ld, workspace.data());
}

void BlockedLeastSquares::merge(BlockedLeastSquares&& other)
{
    assert(other.columnCount == columnCount && other.outputCount == outputCount);
    if (rowCount == 0) {
        *this = std::move(other);
        return;
    }
    const auto n = static_cast<lapack_int>(columnCount);
    const auto panel = static_cast<lapack_int>(reflectionsPerPanel(columnCount));
    LAPACKE_dtpqrt_work(LAPACK_COL_MAJOR, n, n, n, panel, triangle.data(), n, other.triangle.data(),
                        n, reflectorBlock.data(), panel, workspace.data());
    rowCount += other.rowCount;
    if (outputCount == 0) {
        return;
    }
    LAPACKE_dtpmqrt_work(LAPACK_COL_MAJOR, 'L', 'T', n, static_cast<lapack_int>(outputCount), n, n,
                         panel, other.triangle.data(), n, reflectorBlock.data(), panel,
                         rotatedOutputs.data(), n, other.rotatedOutputs.data(), n,
                         workspace.data());
}

BlockedLeastSquares::Solution
BlockedLeastSquares::solve(const std::vector<Column>& descriptions) const
{
    assert(descriptions.size() == columnCount);
    // A column with at least this share orthogonal to the kept ones is kept whatever the rounding
    // of the data is.
    constexpr double clearlySeparable = 1e-3;
    // A factor of safety on the estimate of the rounding errors.
    constexpr double roundingMargin = 2.0;

    const double rootOfRows = std::sqrt(static_cast<double>(rowCount));
    std::vector<double> matrix = triangle;
    std::vector<double> rotated = rotatedOutputs;
    std::vector<char> isKept(columnCount, 0);
    Solution solution;
    std::vector<double>& factor = solution.factor; // until the end with columnCount rows
    factor.reserve(columnCount * columnCount);

    const auto kept = [&](std::size_t parent) {
        return parent == Column::noParent || isKept[parent];
    };
    const auto combinationOf = [&](std::size_t column) {
        const std::size_t size = solution.kept.size();
        std::vector<double> combination(&matrix[column * columnCount],
                                        &matrix[column * columnCount] + size);
        if (size > 0) {
            cblas_dtrsv(CblasColMajor, CblasUpper, CblasNoTrans, CblasNonUnit,
                        static_cast<int>(size), factor.data(), static_cast<int>(columnCount),
                        combination.data(), 1);
        }
        return combination;
    };
    const auto roundingOf = [&](std::size_t column) {
        const std::vector<double> combination = combinationOf(column);
        double rounding = descriptions[column].rounding;
        for (std::size_t k = 0; k < combination.size(); ++k) {
            rounding += std::fabs(combination[k]) * descriptions[solution.kept[k]].rounding;
        }
        return rounding * rootOfRows;
    };

    for (std::size_t column = 0; column < columnCount; ++column) {
        const Column& description = descriptions[column];
        if (description.isConstant || !kept(description.parents[0]) ||
            !kept(description.parents[1])) {
            continue;
        }
        const std::size_t row = solution.kept.size();
        const double* values = &matrix[column * columnCount];
        const double whole = length(values, column + 1);
        const double rest = length(values + row, column + 1 - row);
        if (rest <= separableFraction * whole ||
            (rest < clearlySeparable * whole && rest <= roundingMargin * roundingOf(column))) {
            if (solution.dependences.size() < maxDependences) {
                solution.dependences.push_back({column, combinationOf(column)});
            }
            continue;
        }
        if (row < column) {
            reflect(matrix, columnCount, rotated, outputCount, column, row, column);
        }
        factor.insert(factor.end(), values, values + columnCount);
        isKept[column] = 1;
        solution.kept.push_back(column);
    }

    const std::size_t size = solution.kept.size();
    for (std::size_t k = 0; k < size; ++k) {
        std::copy_n(&factor[k * columnCount], size, &factor[k * size]);
    }
    factor.resize(size * size);
    for (std::size_t output = 0; output < outputCount; ++output) {
        const double* values = rotated.data() + output * columnCount;
        solution.coefficients.insert(solution.coefficients.end(), values, values + size);
    }
    if (outputCount > 0) {
        cblas_dtrsm(CblasColMajor, CblasLeft, CblasUpper, CblasNoTrans, CblasNonUnit,
                    static_cast<int>(size), static_cast<int>(outputCount), 1.0, factor.data(),
                    static_cast<int>(size), solution.coefficients.data(), static_cast<int>(size));
    }
    return solution;
}
