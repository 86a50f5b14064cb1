#pragma once

#include <mirel_fitting/polynomial/DesignPass.h>

#include <cstddef>
#include <vector>

/** A fit by least squares, as far as its residuals depend on it. All is borrowed. */
struct FactoredFit
{
    const std::vector<std::size_t>& terms;    ///< of the basis, in the order of the factor
    const std::vector<double>& inverseFactor; ///< R^-1, upper triangular, with R'R = X'X
    const std::vector<double>& coefficients;  ///< scaled; one per term, output by output
};

/** Residuals and leverages of a fit at its cases, in units of the output's scale; residuals are
 *  times the root of the case's weight. */
struct FitResiduals
{
    struct Output
    {
        double squares = 0.0;
        double press = 0.0; ///< sum of the squared deleted residuals (of fits without the case)
        std::vector<double> ofSampled;
    };

    std::vector<Output> outputs;
    double largestLeverage = 0.0;
    double largestVariance = 0.0; ///< of leverages over weights
    std::vector<double> leveragesOfSampled;
    std::vector<double> gradients; ///< X'r: one per term, output by output
};

/** Residuals r = y - X b and leverages, the diagonal of X (X'X)^-1 X'. O(p^2) per case. */
class ResidualPass : public DesignPass
{
public:
    /**
     * Everything is borrowed for life.
     * @param sample ascending rows whose single values are kept; empty: all rows.
     * @param result sized by the first pass constructed; the sums of all chunks are added to it.
     */
    ResidualPass(const FitColumns& columns, const FactoredFit& fit,
                 const std::vector<std::size_t>& sample, FitResiduals& result);

    void handOver(std::size_t chunk) override;

private:
    void begin() override;
    void addBlock(std::size_t firstRow, std::size_t rows) override;
    void subtractPredictions(int rows);
    void addGradients(int rows);
    void computeLeverages(int rows);
    void addSquares(std::size_t firstRow, std::size_t rows);
    void keepSampled(std::size_t firstRow, std::size_t rows);

    const FactoredFit& fit;
    const std::vector<std::size_t>& sample;
    FitResiduals& result;
    FitResiduals sums; // of the chunk
    std::vector<double> oneMinusLeverage;
};
