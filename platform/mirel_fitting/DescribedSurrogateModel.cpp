#include <mirel_fitting/DescribedSurrogateModel.h>

#include <mirel_fitting/cases/ArgumentCheck.h>
#include <mirel_fitting/cases/CaseRanges.h>
#include <mirel_fitting/kriging/grid/KrigingGrid.h>
#include <mirel_fitting/polynomial/PolynomialPredictor.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace {

using Error = SurrogateModelInterface::Error;
using Description = PredictorDescription;

constexpr std::size_t noFactor = Description::noFactor;

void require(bool condition, const std::string& sentence)
{
    if (!condition) {
        throw Error("The description of the model contradicts itself: " + sentence);
    }
}

bool allFinite(const std::vector<double>& numbers)
{
    return std::all_of(numbers.begin(), numbers.end(),
                       [](double number) { return std::isfinite(number); });
}

void checkInputs(const std::vector<Description::InputRange>& inputs)
{
    for (const Description::InputRange& range : inputs) {
        require(std::isfinite(range.minimum) && std::isfinite(range.maximum) &&
                    range.minimum <= range.maximum,
                "the range of an input is none.");
    }
}

void checkCoordinates(const Description& description)
{
    for (const Description::Coordinate& coordinate : description.coordinates) {
        require(coordinate.input < description.inputs.size(),
                "a coordinate is that of input " + std::to_string(coordinate.input) +
                    ", counted from 0, of " + std::to_string(description.inputs.size()) + ".");
        require(std::isfinite(coordinate.origin), "the origin of a coordinate is not finite.");
        require(std::isfinite(coordinate.unit) && coordinate.unit > 0.0,
                "the unit of a coordinate is not positive.");
    }
}

void checkTerms(const Description& description)
{
    const std::size_t coordinates = description.coordinates.size();
    const auto isFactor = [&](std::size_t factor) {
        return factor == noFactor || factor < coordinates;
    };
    for (const Description::Term& term : description.terms) {
        require(isFactor(term.first) && isFactor(term.second),
                "a term has a coordinate that does not exist.");
        require(term.second == noFactor || (term.first != noFactor && term.first <= term.second),
                "the factors of a term are not in order.");
        require(std::isfinite(term.coefficient), "the coefficient of a term is not finite.");
    }
}

void checkCorrelation(const Description& description)
{
    const std::size_t cases = description.weights.size();
    const std::size_t coordinates = description.coordinates.size();
    if (cases == 0) {
        require(description.cases.empty(), "there are cases without weights.");
        return;
    }
    require(coordinates > 0, "there are weights of cases without coordinates.");
    require(description.cases.size() / coordinates == cases &&
                description.cases.size() % coordinates == 0,
            "the cases have " + std::to_string(description.cases.size()) +
                " coordinates in all, not " + std::to_string(coordinates) + " for each of " +
                std::to_string(cases) + " weights.");
    require(description.lengths.size() == coordinates,
            "there are " + std::to_string(description.lengths.size()) + " lengths for " +
                std::to_string(coordinates) + " coordinates.");
    require(allFinite(description.weights), "a weight is not finite.");
    require(allFinite(description.cases), "a coordinate of a case is not finite.");
    for (const double length : description.lengths) {
        require(length > 0.0, "a length is not positive.");
        // Shorter lengths are refused: the scaled coordinates must stay finite.
        require(length >= 1e-100, "a length is below 1e-100.");
    }
    for (const double coordinate : description.cases) {
        require(std::fabs(coordinate) <= 1e150, "a coordinate of a case is beyond 1e150.");
    }
}

void check(const Description& description)
{
    checkInputs(description.inputs);
    checkCoordinates(description);
    checkTerms(description);
    require(std::isfinite(description.offset), "the offset is not finite.");
    require(std::isfinite(description.scale), "the scale is not finite.");
    if (description.kind == Description::Kind::Kriging) {
        checkCorrelation(description);
    } else {
        require(description.weights.empty() && description.cases.empty(),
                "a polynomial has no cases.");
    }
}

/** The basis of the described order, with a coefficient for each of its terms. */
PolynomialPredictor polynomialOf(const Description& description)
{
    const std::size_t inputs = description.coordinates.size();
    int order = 0;
    for (const Description::Term& term : description.terms) {
        order = std::max(order, term.second != noFactor ? 2 : term.first != noFactor ? 1 : 0);
    }
    std::vector<PolynomialPredictor::Scale> scales;
    for (const Description::Coordinate& coordinate : description.coordinates) {
        scales.push_back({coordinate.origin, coordinate.unit});
    }

    constexpr std::size_t maxTerms = 10000; // as of a response surface that is fitted
    require(QuadraticBasis::termCount(inputs, order) <= maxTerms,
            "its polynomial has more than " + std::to_string(maxTerms) + " terms.");
    const QuadraticBasis basis(inputs, order);
    PolynomialPredictor::Output output;
    output.constant = description.offset;
    output.coefficients.assign(basis.size(), 0.0);
    for (const Description::Term& term : description.terms) {
        const std::size_t position = basis.position({term.first, term.second});
        output.coefficients[position] += term.coefficient;
        output.constant += position == 0 ? term.coefficient : 0.0;
    }
    return {basis, std::move(scales), {std::move(output)}};
}

/** One described output, ready to predict. */
struct Predictor
{
    explicit Predictor(const DescribedSurrogateModel::Output& output) : output(output)
    {
        check(output.predictor);
        if (output.predictor.kind == Description::Kind::Kriging) {
            kriging.emplace(FittedKriging::of(output.predictor));
        } else {
            polynomial.emplace(polynomialOf(output.predictor));
        }
    }

    void predict(const std::vector<double*>& inputs, const std::vector<ProductGrid>& grids,
                 std::size_t count, double* result) const
    {
        if (kriging) {
            predictGrids(*kriging, inputs, grids, result);
        } else {
            polynomial->predict(coordinatesOf(inputs), {0}, {result}, count);
            addNotFinite(inputs, result, count);
        }
        OutputTransforms::invert(output.predictor.transform, result, count);
    }

    DescribedSurrogateModel::Output output;
    std::optional<KrigingPredictor> kriging;
    std::optional<PolynomialPredictor> polynomial;

private:
    std::vector<double*> coordinatesOf(const std::vector<double*>& inputs) const
    {
        std::vector<double*> columns;
        for (const Description::Coordinate& coordinate : output.predictor.coordinates) {
            columns.push_back(inputs[coordinate.input]);
        }
        return columns;
    }

    /** NaN for inputs without influence, too, which the polynomial does not read. */
    void addNotFinite(const std::vector<double*>& inputs, double* result, std::size_t count) const
    {
        std::vector<bool> isUsed(inputs.size(), false);
        for (const Description::Coordinate& coordinate : output.predictor.coordinates) {
            isUsed[coordinate.input] = true;
        }
        for (std::size_t input = 0; input < inputs.size(); ++input) {
            for (std::size_t i = 0; !isUsed[input] && i < count; ++i) {
                result[i] += 0.0 * inputs[input][i];
            }
        }
    }
};

} // namespace

class DescribedSurrogateModel::Impl
{
public:
    explicit Impl(const std::vector<Output>& described)
        : ranges((require(!described.empty(), "it has no output."), described[0].predictor.inputs)),
          columns(described[0].predictor.inputs.size(), described.size())
    {
        const std::size_t inputs = described[0].predictor.inputs.size();
        for (const Output& output : described) {
            require(output.predictor.inputs.size() == inputs,
                    "its outputs have different numbers of inputs.");
            predictors.emplace_back(output);
        }
    }

    const Predictor& predictor(int offset) const
    {
        columns.requireOutput(offset);
        return predictors[static_cast<std::size_t>(offset)];
    }

    CaseRanges ranges;
    ArgumentCheck columns;
    std::vector<Predictor> predictors;
};

DescribedSurrogateModel::DescribedSurrogateModel(const std::vector<Output>& outputs)
    : impl(std::make_unique<Impl>(outputs))
{}

DescribedSurrogateModel::~DescribedSurrogateModel() = default;

void DescribedSurrogateModel::activateDependentVariables(const std::set<int>& offsets)
{
    impl->columns.requireOutputs(offsets);
}

void DescribedSurrogateModel::interpolateDependentValues(const std::vector<double*>& inputs,
                                                         const std::set<int>& offsets,
                                                         std::vector<double*>& outputs,
                                                         std::size_t count) const
{
    impl->columns.requireEvaluation(inputs, offsets, outputs, count);
    if (count == 0) {
        return;
    }
    const std::vector<ProductGrid> grids = ProductGrid::split(inputs, count);
    std::size_t k = 0;
    for (const int offset : offsets) {
        impl->predictor(offset).predict(inputs, grids, count, outputs[k++]);
    }
}

bool DescribedSurrogateModel::surfaceCoefficientInformationAvailable() const
{
    return false;
}

bool DescribedSurrogateModel::qualityMetricInformationAvailable() const
{
    return false;
}

std::string DescribedSurrogateModel::surfaceCoefficientInformation(int offset) const
{
    impl->columns.requireOutput(offset);
    throw Error("A model that was made from its description has no equation text.");
}

std::string DescribedSurrogateModel::qualityMetricInformation(int offset) const
{
    impl->columns.requireOutput(offset);
    throw Error("A model that was made from its description has no quality text.");
}

FitMetrics DescribedSurrogateModel::fitMetrics(int offset) const
{
    return impl->predictor(offset).output.metrics;
}

std::vector<std::string>
DescribedSurrogateModel::fitWarnings(int offset,
                                     const std::vector<std::string>& /*inputNames*/) const
{
    return impl->predictor(offset).output.warnings;
}

std::vector<double> DescribedSurrogateModel::extrapolations(const std::vector<double*>& inputs,
                                                            std::size_t count) const
{
    impl->columns.requirePoints(inputs, count);
    return impl->ranges.distances(inputs, count);
}

Extrapolation
DescribedSurrogateModel::extrapolation(const std::vector<double*>& inputs, std::size_t count,
                                       const std::vector<std::string>& inputNames) const
{
    impl->columns.requirePoints(inputs, count);
    return impl->ranges.extrapolation(inputs, count, InputNames(inputNames));
}

std::vector<char> DescribedSurrogateModel::outsideCases(const std::vector<double*>& inputs,
                                                        std::size_t count) const
{
    impl->columns.requirePoints(inputs, count);
    return impl->ranges.outside(inputs, count, std::vector<char>(count, 0));
}

PredictorDescription DescribedSurrogateModel::predictorDescription(int offset) const
{
    return impl->predictor(offset).output.predictor;
}
