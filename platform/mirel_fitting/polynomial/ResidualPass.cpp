#include <mirel_fitting/polynomial/ResidualPass.h>

#include <cblas.h>

#include <algorithm>
#include <functional>

namespace {

constexpr auto leading = static_cast<int>(DesignPass::rowsPerBlock);

} // namespace

ResidualPass::ResidualPass(const FitColumns& columns, const FactoredFit& fit,
                           const std::vector<std::size_t>& sample, FitResiduals& result)
    : DesignPass(columns, fit.terms), fit(fit), sample(sample), result(result),
      oneMinusLeverage(rowsPerBlock)
{
    const std::size_t sampled = sample.empty() ? columns.cases : sample.size();
    result.outputs.resize(columns.outputs.size());
    for (FitResiduals::Output& output : result.outputs) {
        output.ofSampled.resize(sampled);
    }
    result.leveragesOfSampled.resize(sampled);
    result.gradients.resize(fit.coefficients.size());
}

void ResidualPass::begin()
{
    sums.outputs.assign(columns.outputs.size(), {});
    sums.largestLeverage = 0.0;
    sums.largestVariance = 0.0;
    sums.gradients.assign(fit.coefficients.size(), 0.0);
}

void ResidualPass::handOver(std::size_t /*chunk*/)
{
    for (std::size_t output = 0; output < sums.outputs.size(); ++output) {
        result.outputs[output].squares += sums.outputs[output].squares;
        result.outputs[output].press += sums.outputs[output].press;
    }
    result.largestLeverage = std::max(result.largestLeverage, sums.largestLeverage);
    result.largestVariance = std::max(result.largestVariance, sums.largestVariance);
    std::transform(result.gradients.begin(), result.gradients.end(), sums.gradients.begin(),
                   result.gradients.begin(), std::plus<>());
}

void ResidualPass::addBlock(std::size_t firstRow, std::size_t rows)
{
    const auto count = static_cast<int>(rows);
    if (!columns.outputs.empty()) {
        subtractPredictions(count);
        addGradients(count);
    }
    computeLeverages(count);
    addSquares(firstRow, rows);
    keepSampled(firstRow, rows);
}

/** From now on `outputs` holds the residuals. */
void ResidualPass::subtractPredictions(int rows)
{
    const auto p = static_cast<int>(terms.size());
    cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, rows,
                static_cast<int>(columns.outputs.size()), p, -1.0, design.data(), leading,
                fit.coefficients.data(), p, 1.0, outputs.data(), leading);
}

void ResidualPass::addGradients(int rows)
{
    const auto p = static_cast<int>(terms.size());
    cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, p,
                static_cast<int>(columns.outputs.size()), rows, 1.0, design.data(), leading,
                outputs.data(), leading, 1.0, sums.gradients.data(), p);
}

/** The leverage of a case is the squared length of its row of the orthonormal factor X R^-1, which
 *  replaces the design. */
void ResidualPass::computeLeverages(int rows)
{
    const auto p = static_cast<int>(terms.size());
    cblas_dtrmm(CblasColMajor, CblasRight, CblasUpper, CblasNoTrans, CblasNonUnit, rows, p, 1.0,
                fit.inverseFactor.data(), p, design.data(), leading);
    std::fill_n(oneMinusLeverage.begin(), rows, 1.0);
    for (std::size_t term = 0; term < terms.size(); ++term) {
        const double* column = design.data() + term * rowsPerBlock;
        for (int row = 0; row < rows; ++row) {
            oneMinusLeverage[static_cast<std::size_t>(row)] -= column[row] * column[row];
        }
    }
}

void ResidualPass::addSquares(std::size_t firstRow, std::size_t rows)
{
    for (std::size_t row = 0; row < rows; ++row) {
        const double leverage = 1.0 - oneMinusLeverage[row];
        sums.largestLeverage = std::max(sums.largestLeverage, leverage);
        sums.largestVariance = std::max(sums.largestVariance,
                                        leverage / columns.weightedBlocks.weight(firstRow + row));
    }
    for (std::size_t output = 0; output < sums.outputs.size(); ++output) {
        FitResiduals::Output& sum = sums.outputs[output];
        const double* residuals = outputs.data() + output * rowsPerBlock;
        for (std::size_t row = 0; row < rows; ++row) {
            const double deleted = residuals[row] / oneMinusLeverage[row];
            sum.squares += residuals[row] * residuals[row];
            sum.press += deleted * deleted;
        }
    }
}

/** No two passes write the same elements. */
void ResidualPass::keepSampled(std::size_t firstRow, std::size_t rows)
{
    const auto position = [&](std::size_t row) {
        return sample.empty()
                   ? row
                   : static_cast<std::size_t>(std::lower_bound(sample.begin(), sample.end(), row) -
                                              sample.begin());
    };
    const std::size_t last = position(firstRow + rows);
    for (std::size_t k = position(firstRow); k < last; ++k) {
        const std::size_t row = (sample.empty() ? k : sample[k]) - firstRow;
        // Rounding may take a leverage of 1 beyond it.
        result.leveragesOfSampled[k] = std::clamp(1.0 - oneMinusLeverage[row], 0.0, 1.0);
        for (std::size_t output = 0; output < result.outputs.size(); ++output) {
            result.outputs[output].ofSampled[k] = outputs.data()[output * rowsPerBlock + row];
        }
    }
}
