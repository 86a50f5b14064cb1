#include <mirel_modelexport/SourceTerms.h>

#include <mirel_modelexport/ExportText.h>

#include <algorithm>

namespace {

using Term = PredictorDescription::Term;

constexpr std::size_t noFactor = PredictorDescription::noFactor;

std::string factor(std::size_t coordinate)
{
    return "x[" + std::to_string(coordinate) + "]";
}

/** " * x[k]", or nothing. */
std::string times(std::size_t coordinate)
{
    return coordinate == noFactor ? "" : " * " + factor(coordinate);
}

} // namespace

std::vector<std::string> productTerms(const PredictorDescription& predictor)
{
    std::vector<std::string> terms;
    for (const Term& term : predictor.terms) {
        terms.push_back(realNumber(term.coefficient) + times(term.first) + times(term.second));
    }
    return terms;
}

std::vector<std::string> nestedTerms(const PredictorDescription& predictor)
{
    std::vector<std::string> groups;
    for (std::size_t i = 0; i < predictor.coordinates.size(); ++i) {
        std::string slope;
        for (const Term& term : predictor.terms) {
            if (term.first == i) {
                slope += slope.empty() ? realNumber(term.coefficient)
                                       : signedNumber(term.coefficient, realNumber);
                slope += times(term.second);
            }
        }
        if (!slope.empty()) {
            groups.push_back(factor(i) + " * (" + slope + ")");
        }
    }
    return groups;
}

std::string outputOf(OutputTransform transform, const std::string& expression,
                     std::string exponential, std::string square)
{
    if (transform == OutputTransform::None) {
        return expression;
    }
    std::string& text = transform == OutputTransform::Logarithm ? exponential : square;
    return text.replace(text.find('%'), 1, expression);
}

bool hasFactors(const PredictorDescription& predictor)
{
    return std::any_of(predictor.terms.begin(), predictor.terms.end(),
                       [](const Term& term) { return term.first != noFactor; });
}

bool needsCoordinates(const PredictorDescription& predictor)
{
    return !predictor.weights.empty() || hasFactors(predictor);
}

bool hasCorrelation(const ExportedModel& model)
{
    return std::any_of(model.outputs.begin(), model.outputs.end(),
                       [](const auto& output) { return !output.model.predictor.weights.empty(); });
}

bool hasTransform(const ExportedModel& model, OutputTransform transform)
{
    return std::any_of(model.outputs.begin(), model.outputs.end(), [&](const auto& output) {
        return output.model.predictor.transform == transform;
    });
}
