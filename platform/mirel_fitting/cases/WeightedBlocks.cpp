#include <mirel_fitting/cases/WeightedBlocks.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <algorithm>
#include <cmath>
#include <string>

using Error = SurrogateModelInterface::Error;

namespace {

void requireOnePerCase(std::size_t count, std::size_t cases, const char* what)
{
    if (count != 0 && count != cases) {
        throw Error("There are " + std::to_string(count) + what + " for " + std::to_string(cases) +
                    " cases; each case needs one.");
    }
}

} // namespace

WeightedBlocks::WeightedBlocks(const CaseDesign& design, std::size_t cases)
    : roots(design.weights), numbers(design.blocks)
{
    requireOnePerCase(design.weights.size(), cases, " weights");
    requireOnePerCase(design.blocks.size(), cases, " blocks");
    double sum = 0.0;
    for (const double weight : roots) {
        if (!(weight > 0.0) || std::isinf(weight)) {
            throw Error("The weight of a case must be positive and finite.");
        }
        sum += weight / static_cast<double>(cases);
    }
    for (double& root : roots) {
        root = std::sqrt(root / sum);
        sumOfLogarithms += 2.0 * std::log(root);
    }

    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    for (const std::size_t number : design.blocks) {
        blockOfCase.push_back(static_cast<std::size_t>(
            std::lower_bound(numbers.begin(), numbers.end(), number) - numbers.begin()));
    }
}

void WeightedBlocks::weigh(std::size_t firstRow, std::size_t rows, double* values) const
{
    for (std::size_t row = 0; row < rows && areWeighted(); ++row) {
        values[row] *= roots[firstRow + row];
    }
}

void WeightedBlocks::evaluate(std::size_t column, std::size_t firstRow, std::size_t rows,
                              double* values) const
{
    for (std::size_t row = 0; row < rows; ++row) {
        const std::size_t block = blockOfCase[firstRow + row];
        values[row] = block == column ? 1.0 : block == columns() ? -1.0 : 0.0;
    }
}
