#pragma once

#include <mirel_fitting/CaseDesign.h>

#include <cstddef>
#include <vector>

/**
 * Weights and blocks of cases, as a fit by least squares takes them: rows of design and outputs are
 * multiplied by the roots of the weights, whose mean is 1; b blocks are b - 1 columns of the
 * design. Column k is 1 in block k, -1 in the last block and 0 in the others, so that coefficients
 * are the effects of the blocks, whose sum is 0.
 * Montgomery, Peck, Vining: Introduction to Linear Regression Analysis, 5th ed., Wiley 2012, 5.5
 * and 8.3.
 */
class WeightedBlocks
{
public:
    /** Equal weights, no blocks. */
    WeightedBlocks() = default;

    /** @throw SurrogateModelInterface::Error for another number of weights or blocks than cases,
     *         and for a weight that is not positive and finite. */
    WeightedBlocks(const CaseDesign& design, std::size_t cases);

    bool areWeighted() const { return !roots.empty(); }
    double rootOfWeight(std::size_t row) const { return roots.empty() ? 1.0 : roots[row]; }
    double weight(std::size_t row) const { return rootOfWeight(row) * rootOfWeight(row); }
    /** Sum of the logarithms of the weights. */
    double logarithms() const { return sumOfLogarithms; }

    /** Multiplies the values of `rows` cases by the roots of their weights. */
    void weigh(std::size_t firstRow, std::size_t rows, double* values) const;

    std::size_t columns() const { return numbers.empty() ? 0 : numbers.size() - 1; }
    void evaluate(std::size_t column, std::size_t firstRow, std::size_t rows, double* values) const;

    /** The numbers of the blocks that there are, ascending. */
    const std::vector<std::size_t>& blocks() const { return numbers; }
    /** One per case: the position of its block in blocks(); empty without blocks. */
    const std::vector<std::size_t>& positions() const { return blockOfCase; }

private:
    std::vector<double> roots;
    double sumOfLogarithms = 0.0;
    std::vector<std::size_t> numbers;
    std::vector<std::size_t> blockOfCase;
};
