#include <mirel_fitting/polynomial/PolynomialUnits.h>

#include <cmath>
#include <limits>

PolynomialUnits::PolynomialUnits(const QuadraticBasis& basis,
                                 const std::vector<ColumnScale>& scales)
    : basis(basis), zeros(scales.size(), 0.0)
{
    for (const ColumnScale& scale : scales) {
        centres.push_back(scale.centre());
        units.push_back(scale.unit());
        offsets.push_back(-scale.centre() / scale.unit());
        perUnit.push_back(1.0 / scale.unit());
        codedRanges.push_back(scale.halfRange() / scale.unit());
        magnitudes.push_back(scale.largest() + std::fabs(scale.centre()));
    }
}

std::vector<double> PolynomialUnits::centred(const std::vector<double>& scaled) const
{
    return basis.substituted(scaled, zeros, perUnit);
}

std::vector<double> PolynomialUnits::expanded(const std::vector<double>& scaled) const
{
    return basis.substituted(scaled, offsets, perUnit);
}

std::vector<double> PolynomialUnits::expandedMagnitudes(std::vector<double> scaled) const
{
    std::vector<double> distances = offsets;
    for (std::vector<double>* numbers : {&scaled, &distances}) {
        for (double& number : *numbers) {
            number = std::fabs(number);
        }
    }
    return basis.substituted(scaled, distances, perUnit);
}

std::vector<double> PolynomialUnits::coded(const std::vector<double>& scaled) const
{
    return basis.substituted(scaled, zeros, codedRanges);
}

std::vector<double> PolynomialUnits::term(std::size_t index) const
{
    std::vector<double> single(basis.size(), 0.0);
    single[index] = 1.0;
    return basis.substituted(single, centres, units);
}

double PolynomialUnits::expansionLoss(const std::vector<double>& scaled) const
{
    return std::numeric_limits<double>::epsilon() *
           basis.sumOfMagnitudes(centred(scaled), magnitudes);
}
