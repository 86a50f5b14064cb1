#include <mirel_fitting/kriging/prediction/FittedKriging.h>

#include <mirel_fitting/kriging/search/KrigingSizes.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <algorithm>
#include <utility>

double FittedKriging::coordinate(std::size_t k, double value) const
{
    constexpr double farAway = 1e150;
    return std::min(std::max((value - minimum[k]) / range[k], -farAway), farAway);
}

PredictorDescription FittedKriging::description() const
{
    if (neighbours) {
        throw SurrogateModelInterface::Error(
            "Each prediction of the model asks for the nearest of its many cases, which no "
            "exported model holds: leave out cases until no more than " +
            std::to_string(KrigingSizes().maxExact) + " are left, or take a response surface.");
    }
    PredictorDescription description;
    description.kind = PredictorDescription::Kind::Kriging;
    for (std::size_t k = 0; k < inputs.size(); ++k) {
        description.coordinates.push_back({inputs[k], minimum[k], range[k]});
    }
    for (std::size_t t = 0; t < coefficients.size(); ++t) {
        const QuadraticBasis::Term term = trend->keptTerms()[t];
        description.terms.push_back({term.first, term.second, coefficients[t]});
    }
    description.offset = offset;
    description.scale = scale;
    if (correlation) {
        description.lengths = correlation->lengths();
        description.cases = data->coordinates;
        description.weights = weights;
    }
    return description;
}

FittedKriging FittedKriging::of(const PredictorDescription& description)
{
    FittedKriging result;
    for (const PredictorDescription::Coordinate& coordinate : description.coordinates) {
        result.inputs.push_back(coordinate.input);
        result.minimum.push_back(coordinate.origin);
        result.range.push_back(coordinate.unit);
    }
    std::vector<QuadraticBasis::Term> terms;
    for (const PredictorDescription::Term& term : description.terms) {
        terms.push_back({term.first, term.second});
        result.coefficients.push_back(term.coefficient);
    }
    result.trend = std::make_shared<KrigingTrend>(std::move(terms));
    result.offset = description.offset;
    result.scale = description.scale;
    if (!description.weights.empty()) {
        result.correlation =
            std::make_shared<MaternCorrelation>(description.weights.size(), result.inputs.size(),
                                                description.cases.data(), description.lengths);
        result.weights = description.weights;
    }
    return result;
}
