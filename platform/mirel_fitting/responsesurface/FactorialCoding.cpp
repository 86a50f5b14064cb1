#include <mirel_fitting/responsesurface/FactorialCoding.h>

#include <mirel_fitting/cases/ColumnScale.h>

#include <algorithm>
#include <cmath>

namespace {

/** The distance of an input's factorial points as a share of its range; 1 if it has none. */
double factorialShare(const double* values, std::size_t cases)
{
    constexpr std::size_t levelCount = 5; // axial, factorial, centre, factorial, axial
    const ColumnScale scale(values, cases);
    const double rounding = 1e-6 * scale.halfRange();
    std::vector<double> levels;
    for (std::size_t row = 0; row < cases && levels.size() <= levelCount; ++row) {
        if (std::none_of(levels.begin(), levels.end(), [&](double level) {
                return std::fabs(level - values[row]) <= rounding;
            })) {
            levels.push_back(values[row]);
        }
    }
    if (levels.size() != levelCount) {
        return 1.0;
    }
    std::sort(levels.begin(), levels.end());
    const double middle = levels[0] / 2.0 + levels[4] / 2.0;
    const bool isSymmetric = std::fabs(levels[2] - middle) <= rounding &&
                             std::fabs(levels[1] / 2.0 + levels[3] / 2.0 - middle) <= rounding;
    return isSymmetric ? (levels[3] / 2.0 - levels[1] / 2.0) / scale.halfRange() : 1.0;
}

} // namespace

FactorialCoding::FactorialCoding(const std::vector<double*>& inputs, std::size_t cases)
{
    for (const double* const values : inputs) {
        shares.push_back(factorialShare(values, cases));
    }
}

void FactorialCoding::apply(ResponseSurfaceStatistics& statistics) const
{
    statistics.coding = InputCoding::Factorial;
    for (std::size_t input = 0; input < shares.size(); ++input) {
        if (shares[input] < 1.0) {
            statistics.factorialInputs.push_back(input);
        }
    }
    for (CoefficientStatistics& one : statistics.codedCoefficients) {
        for (const std::size_t input : one.factors) {
            for (double* figure : {&one.estimate, &one.standardError, &one.lower, &one.upper}) {
                *figure *= shares[input];
            }
        }
    }
}
