#include <mirel_modelexport/CheckPoints.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

std::vector<std::vector<double>>
pointsInside(const std::vector<PredictorDescription::InputRange>& ranges)
{
    std::mt19937_64 generator(20120229);
    std::vector<std::vector<double>> points(CheckPoints::count);
    for (std::vector<double>& point : points) {
        for (const PredictorDescription::InputRange& range : ranges) {
            // The raw bits: the distributions of the standard library differ between systems.
            const double share = 0.02 + 0.96 * (static_cast<double>(generator() >> 11) * 0x1p-53);
            // Two products, since the range of finite values may overflow; clamped, since they
            // round.
            point.push_back(std::clamp((1.0 - share) * range.minimum + share * range.maximum,
                                       range.minimum, range.maximum));
        }
    }
    return points;
}

/** @param tolerance of the transform of `value`. */
double outputTolerance(OutputTransform transform, double value, double tolerance)
{
    if (transform == OutputTransform::None) {
        return tolerance;
    }
    const double transformed = OutputTransforms::apply(transform, value);
    return OutputTransforms::invert(transform, transformed + tolerance) -
           OutputTransforms::invert(transform, transformed - tolerance) +
           4.0 * epsilon * std::fabs(value);
}

} // namespace

std::vector<double> predictionsAt(const ExportedModel& model, std::size_t output,
                                  const std::vector<std::vector<double>>& points)
{
    std::vector<std::vector<double>> columns(model.inputs.size());
    std::vector<double*> inputs;
    for (std::size_t k = 0; k < columns.size(); ++k) {
        for (const std::vector<double>& point : points) {
            columns[k].push_back(point[k]);
        }
        inputs.push_back(columns[k].data());
    }
    std::vector<double> predictions(points.size());
    std::vector<double*> results = {predictions.data()};
    model.predictor()->interpolateDependentValues(inputs, {static_cast<int>(output)}, results,
                                                  points.size());
    return predictions;
}

CheckPoints::CheckPoints(const ExportedModel& model)
    : points(pointsInside(model.outputs.front().model.predictor.inputs))
{
    for (std::size_t output = 0; output < model.outputs.size(); ++output) {
        const PredictorDescription& described = model.outputs[output].model.predictor;
        values.push_back(predictionsAt(model, output, points));
        tolerances.emplace_back();
        for (std::size_t i = 0; i < count; ++i) {
            tolerances.back().push_back(outputTolerance(described.transform, values.back()[i],
                                                        roundingTolerance(described, points[i])));
        }
    }
}

double inputRounding(const ExportedModel& model, std::size_t output,
                     const std::vector<double>& point)
{
    // Steep enough for a slope and short enough for a smooth function; only its size counts.
    constexpr double step = 1e-4;
    const std::vector<PredictorDescription::Coordinate>& coordinates =
        model.outputs[output].model.predictor.coordinates;
    std::vector<std::vector<double>> points = {point};
    for (const PredictorDescription::Coordinate& coordinate : coordinates) {
        points.push_back(point);
        points.back()[coordinate.input] += step * coordinate.unit;
    }
    const std::vector<double> values = predictionsAt(model, output, points);
    double rounding = 0.0;
    for (std::size_t k = 0; k < coordinates.size(); ++k) {
        const double slope = std::fabs(values[k + 1] - values[0]) / step;
        const double size =
            std::fabs(point[coordinates[k].input]) + std::fabs(coordinates[k].origin);
        rounding += slope * (epsilon * size / coordinates[k].unit);
    }
    return rounding;
}

std::vector<double> correlationScales(const PredictorDescription& predictor)
{
    std::vector<double> scales;
    for (const double length : predictor.lengths) {
        scales.push_back(std::sqrt(5.0) / length);
    }
    return scales;
}

std::vector<double> scaledCases(const PredictorDescription& predictor)
{
    const std::vector<double> scales = correlationScales(predictor);
    const std::size_t cases = predictor.weights.size();
    std::vector<double> scaled;
    scaled.reserve(predictor.cases.size());
    for (std::size_t j = 0; j < cases; ++j) {
        for (std::size_t k = 0; k < scales.size(); ++k) {
            scaled.push_back(predictor.cases[k * cases + j] * scales[k]);
        }
    }
    return scaled;
}

double roundingTolerance(const PredictorDescription& predictor, const std::vector<double>& point)
{
    constexpr double farAway = 1e150;
    constexpr double farthest = 1000.0;
    const bool isKriging = predictor.kind == PredictorDescription::Kind::Kriging;

    std::vector<double> coordinates;
    std::vector<double> factors;
    for (const PredictorDescription::Coordinate& coordinate : predictor.coordinates) {
        const double u = (point[coordinate.input] - coordinate.origin) / coordinate.unit;
        coordinates.push_back(std::clamp(u, -farAway, farAway));
        factors.push_back(isKriging ? 2.0 * coordinates.back() - 1.0 : u);
    }
    double polynomial = 0.0;
    for (const PredictorDescription::Term& term : predictor.terms) {
        double size = std::fabs(term.coefficient);
        for (const std::size_t factor : {term.first, term.second}) {
            size *= factor == PredictorDescription::noFactor ? 1.0 : std::fabs(factors[factor]);
        }
        polynomial += size;
    }
    if (!isKriging) {
        return 8.0 * epsilon * (std::fabs(predictor.offset) + polynomial);
    }

    const std::vector<double> scales = correlationScales(predictor);
    const std::vector<double> cases = scaledCases(predictor);
    double correlated = 0.0;
    for (std::size_t j = 0; j < predictor.weights.size(); ++j) {
        double correlation = 1.0;
        for (std::size_t k = 0; k < scales.size(); ++k) {
            const double z = std::min(
                std::fabs(coordinates[k] * scales[k] - cases[j * scales.size() + k]), farthest);
            correlation *= (1.0 + z * (1.0 + z / 3.0)) * std::exp(-z);
        }
        correlated += std::fabs(predictor.weights[j]) * correlation;
    }
    constexpr double ofDeviation = 1e-12;
    return 4.0 * epsilon *
               (std::fabs(predictor.offset) +
                std::fabs(predictor.scale) * (polynomial + correlated)) +
           ofDeviation * std::fabs(predictor.scale);
}
