#include <mirel_fitting/TransformedOutput.h>

#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/cases/ArgumentCheck.h>
#include <mirel_fitting/transform/TransformChoice.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace {

using Columns = std::vector<std::vector<double>>;

constexpr double none = FitMetrics::none;

/** None where the transform is chosen for each output. */
std::optional<OutputTransform> fixedTransform(TransformSetting setting)
{
    switch (setting) {
    case TransformSetting::None:
        return OutputTransform::None;
    case TransformSetting::SquareRoot:
        return OutputTransform::SquareRoot;
    case TransformSetting::Logarithm:
        return OutputTransform::Logarithm;
    default:
        return std::nullopt;
    }
}

std::vector<double> transformed(OutputTransform transform, const std::vector<double>& output)
{
    std::vector<double> values(output.size());
    std::transform(output.begin(), output.end(), values.begin(),
                   [&](double y) { return OutputTransforms::apply(transform, y); });
    return values;
}

} // namespace

class TransformedOutput::Impl
{
public:
    /** An output as it was fitted. */
    struct Fit
    {
        OutputTransform transform = OutputTransform::None;
        double gain = none;
        std::optional<BoxCoxProfile> profile;
        int innerOffset = 0;
        FitMetrics metrics;
    };

    Impl(const std::vector<double*>& independentColumns,
         const std::vector<double*>& dependentColumns, std::size_t rowCount, Maker maker,
         TransformSetting setting, const CaseDesign& design)
        : columns(independentColumns, dependentColumns, rowCount), maker(std::move(maker)),
          fixed(fixedTransform(setting)), isBoxCox(setting == TransformSetting::BoxCox),
          design(design)
    {
        std::vector<double*> innerOutputs = dependentColumns;
        Columns added;
        for (std::size_t offset = 0; offset < dependentColumns.size(); ++offset) {
            const double* const output = dependentColumns[offset];
            if (!columns.isFittable(offset) || !isCandidate(output, rowCount)) {
                continue;
            }
            outputs[static_cast<int>(offset)].assign(output, output + rowCount);
            for (const OutputTransform transform : wantedTransforms()) {
                added.push_back(transformed(transform, outputs[static_cast<int>(offset)]));
                innerOffsets[{static_cast<int>(offset), transform}] =
                    static_cast<int>(innerOutputs.size() + added.size() - 1);
            }
        }
        for (double* const column : pointersTo(added)) {
            innerOutputs.push_back(column);
        }
        inner = this->maker(independentColumns, innerOutputs, rowCount, design);
        for (const double* const input : independentColumns) {
            if (!outputs.empty()) {
                inputs.emplace_back(input, input + rowCount);
            }
        }
    }

    const Fit& fit(int offset)
    {
        columns.requireOutput(offset);
        const auto known = fits.find(offset);
        if (known != fits.end()) {
            return known->second;
        }
        // A fit that throws leaves no entry, so that it is tried again.
        const Fit result = fitted(offset);
        if (result.transform == OutputTransform::None) {
            outputs.erase(offset);
        }
        return fits.emplace(offset, result).first->second;
    }

    std::vector<LeaveOneOutPrediction> leaveOneOutPredictions(int offset, const Fit& fit) const
    {
        std::vector<LeaveOneOutPrediction> predictions =
            inner->leaveOneOutPredictions(fit.innerOffset);
        if (fit.transform == OutputTransform::None) {
            return predictions;
        }
        for (LeaveOneOutPrediction& one : predictions) {
            one.output = outputs.at(offset)[one.row];
            one.standardError = standardError(fit.transform, one.predicted, one.standardError);
            one.predicted = OutputTransforms::invert(fit.transform, one.predicted);
        }
        return predictions;
    }

    static double standardError(OutputTransform transform, double predicted, double error)
    {
        return 0.5 * (OutputTransforms::invert(transform, predicted + error) -
                      OutputTransforms::invert(transform, predicted - error));
    }

    /** Whether a transform was asked for that the output does not have. */
    bool isRefused(const Fit& fit) const
    {
        const bool isAsked =
            isBoxCox || fixed.value_or(OutputTransform::None) != OutputTransform::None;
        return isAsked && fit.transform == OutputTransform::None && !fit.profile;
    }

    ArgumentCheck columns;
    std::unique_ptr<FittedModel> inner;
    std::map<int, Fit> fits;

private:
    bool isCandidate(const double* output, std::size_t rowCount) const
    {
        const auto [smallest, largest] = std::minmax_element(output, output + rowCount);
        return *smallest > 0.0 && fixed != OutputTransform::None &&
               (fixed || isBoxCox || TransformChoice::isWorthwhile(*smallest, *largest, rowCount));
    }

    std::vector<OutputTransform> wantedTransforms() const
    {
        return fixed ? std::vector<OutputTransform>{*fixed}
                     : std::vector<OutputTransform>(TransformChoice::transforms.begin(),
                                                    TransformChoice::transforms.end());
    }

    Fit fitted(int offset)
    {
        Fit result;
        result.innerOffset = offset;
        constexpr double comparing = 0.1; // of the progress
        if (fixed) {
            result.transform = outputs.count(offset) == 0 ? OutputTransform::None : *fixed;
        } else if (outputs.count(offset) != 0) {
            const FitProgress::Portion portion(0.0, comparing, "Comparing transforms");
            if (isBoxCox) {
                result.profile = profileOf(offset);
                result.transform = result.profile->transform;
            } else {
                const TransformChoice choice =
                    TransformChoice::of(inputs, outputs.at(offset), design, maker);
                result.transform = choice.transform;
                result.gain = choice.gain;
            }
        }
        if (result.transform != OutputTransform::None) {
            result.innerOffset = innerOffsets.at({offset, result.transform});
        }
        const FitProgress::Portion portion(comparing, 1.0);
        inner->activateDependentVariables({result.innerOffset});
        result.metrics = inner->fitMetrics(result.innerOffset);
        if (result.transform != OutputTransform::None) {
            measure(offset, result);
        }
        return result;
    }

    BoxCoxProfile profileOf(int offset)
    {
        const std::vector<double>& output = outputs.at(offset);
        return BoxCoxProfile::of(output, [&](Columns candidates) {
            const std::unique_ptr<FittedModel> model =
                maker(pointersTo(inputs), pointersTo(candidates), output.size(), design);
            std::vector<double> likelihoods;
            for (std::size_t k = 0; k < candidates.size(); ++k) {
                const int candidate = static_cast<int>(k);
                model->activateDependentVariables({candidate});
                likelihoods.push_back(model->fitMetrics(candidate).logLikelihood);
            }
            return likelihoods;
        });
    }

    /** The figures that the model has, in the output's units, at the cases that it measures. */
    void measure(int offset, Fit& fit)
    {
        const std::vector<LeaveOneOutPrediction> leftOut = leaveOneOutPredictions(offset, fit);
        const std::vector<double> predictions = predictionsAt(leftOut, fit);
        const std::vector<double>& output = outputs.at(offset);
        const auto weight = [&](const LeaveOneOutPrediction& one) {
            return design.weights.empty() ? 1.0 : design.weights[one.row];
        };
        double measured = 0.0; // the sum of the weights
        double mean = 0.0;
        for (const LeaveOneOutPrediction& one : leftOut) {
            measured += weight(one);
            mean += weight(one) * one.output;
        }
        mean /= measured;
        double squares = 0.0;
        double total = 0.0;
        double press = 0.0;
        for (std::size_t i = 0; i < leftOut.size(); ++i) {
            const double y = output[leftOut[i].row];
            const double w = weight(leftOut[i]);
            squares += w * (y - predictions[i]) * (y - predictions[i]);
            total += w * (y - mean) * (y - mean);
            press += w * (y - leftOut[i].predicted) * (y - leftOut[i].predicted);
        }

        FitMetrics& metrics = fit.metrics;
        const auto set = [](double& figure, double value) {
            figure = std::isnan(figure) ? none : value;
        };
        const auto cases = static_cast<double>(metrics.cases);
        const double residualDegrees = cases - static_cast<double>(metrics.terms);
        const bool isPolynomial = !std::isnan(metrics.adjustedR2);
        set(metrics.r2, 1.0 - squares / total);
        set(metrics.adjustedR2, 1.0 - squares / total * (cases - 1.0) / residualDegrees);
        set(metrics.rmse,
            std::sqrt(squares / measured * (isPolynomial ? cases / residualDegrees : 1.0)));
        set(metrics.press, press * cases / measured);
        set(metrics.predictedR2, 1.0 - press / total);
        set(metrics.looRmse, std::sqrt(press / measured));
        set(metrics.q2, 1.0 - press / total);
    }

    std::vector<double> predictionsAt(const std::vector<LeaveOneOutPrediction>& cases,
                                      const Fit& fit) const
    {
        Columns points(inputs.size());
        for (std::size_t k = 0; k < inputs.size(); ++k) {
            for (const LeaveOneOutPrediction& one : cases) {
                points[k].push_back(inputs[k][one.row]);
            }
        }
        std::vector<double> predictions(cases.size());
        std::vector<double*> results = {predictions.data()};
        inner->interpolateDependentValues(pointersTo(points), {fit.innerOffset}, results,
                                          cases.size());
        for (std::size_t i = 0; i < cases.size(); ++i) {
            predictions[i] =
                OutputTransforms::invert(fit.transform, predictions[i] + cases[i].blockEffect);
        }
        return predictions;
    }

    Maker maker;
    std::optional<OutputTransform> fixed; // none: chosen for each output
    bool isBoxCox;
    CaseDesign design;
    std::map<std::pair<int, OutputTransform>, int> innerOffsets;
    // Of outputs that are, or may yet be, transformed, and the inputs if there is such an output.
    Columns inputs;
    std::map<int, std::vector<double>> outputs;
};

TransformedOutput::TransformedOutput(const std::vector<double*>& independentColumns,
                                     const std::vector<double*>& dependentColumns,
                                     std::size_t rowCount, Maker maker, TransformSetting setting,
                                     const CaseDesign& design)
    : impl(std::make_unique<Impl>(independentColumns, dependentColumns, rowCount, std::move(maker),
                                  setting, design))
{}

TransformedOutput::~TransformedOutput() = default;

OutputTransform TransformedOutput::transform(int offset) const
{
    return impl->fit(offset).transform;
}

double TransformedOutput::gain(int offset) const
{
    return impl->fit(offset).gain;
}

std::optional<BoxCoxProfile> TransformedOutput::boxCoxProfile(int offset) const
{
    return impl->fit(offset).profile;
}

const FittedModel& TransformedOutput::inner() const
{
    return *impl->inner;
}

int TransformedOutput::innerOffset(int offset) const
{
    return impl->fit(offset).innerOffset;
}

void TransformedOutput::activateDependentVariables(const std::set<int>& offsets)
{
    impl->columns.requireOutputs(offsets);
    for (const int offset : offsets) {
        impl->fit(offset);
    }
}

void TransformedOutput::interpolateDependentValues(const std::vector<double*>& inputs,
                                                   const std::set<int>& offsets,
                                                   std::vector<double*>& outputs,
                                                   std::size_t count) const
{
    impl->columns.requireEvaluation(inputs, offsets, outputs, count);
    std::map<int, double*> byInnerOffset;
    std::set<int> innerOffsets;
    std::size_t k = 0;
    for (const int offset : offsets) {
        const int innerOffset = impl->fit(offset).innerOffset;
        byInnerOffset[innerOffset] = outputs[k++];
        innerOffsets.insert(innerOffset);
    }
    std::vector<double*> innerOutputs;
    for (const auto& [innerOffset, column] : byInnerOffset) {
        innerOutputs.push_back(column);
    }
    impl->inner->interpolateDependentValues(inputs, innerOffsets, innerOutputs, count);
    k = 0;
    for (const int offset : offsets) {
        OutputTransforms::invert(impl->fit(offset).transform, outputs[k++], count);
    }
}

bool TransformedOutput::surfaceCoefficientInformationAvailable() const
{
    return impl->inner->surfaceCoefficientInformationAvailable();
}

bool TransformedOutput::qualityMetricInformationAvailable() const
{
    return impl->inner->qualityMetricInformationAvailable();
}

std::string TransformedOutput::surfaceCoefficientInformation(int offset) const
{
    const Impl::Fit& fit = impl->fit(offset);
    const std::string text = impl->inner->surfaceCoefficientInformation(fit.innerOffset);
    const std::size_t end = text.find('\n');
    const std::string equation = text.substr(0, end);
    const std::string rest = end == std::string::npos ? "" : text.substr(end);
    switch (fit.transform) {
    case OutputTransform::SquareRoot:
        return "max(0, " + equation + ")^2" + rest;
    case OutputTransform::Logarithm:
        return "exp(" + equation + ")" + rest;
    default:
        return text;
    }
}

std::string TransformedOutput::qualityMetricInformation(int offset) const
{
    const Impl::Fit& fit = impl->fit(offset);
    const std::string text = impl->inner->qualityMetricInformation(fit.innerOffset);
    switch (fit.transform) {
    case OutputTransform::SquareRoot:
        return "All figures are those of the square root of the output, which was modelled.\n" +
               text;
    case OutputTransform::Logarithm:
        return "All figures are those of the logarithm of the output, which was modelled.\n" + text;
    default:
        return text;
    }
}

FitMetrics TransformedOutput::fitMetrics(int offset) const
{
    return impl->fit(offset).metrics;
}

std::vector<std::string>
TransformedOutput::fitWarnings(int offset, const std::vector<std::string>& inputNames) const
{
    const Impl::Fit& fit = impl->fit(offset);
    std::vector<std::string> warnings = impl->inner->fitWarnings(fit.innerOffset, inputNames);
    if (impl->isRefused(fit)) {
        warnings.insert(warnings.begin(),
                        "The output is not positive in all cases: it was modelled itself, not its "
                        "logarithm or square root.");
    }
    return warnings;
}

std::vector<std::string>
TransformedOutput::fitNotes(int offset, const std::vector<std::string>& inputNames) const
{
    return impl->inner->fitNotes(impl->fit(offset).innerOffset, inputNames);
}

std::vector<double> TransformedOutput::extrapolations(const std::vector<double*>& inputs,
                                                      std::size_t count) const
{
    return impl->inner->extrapolations(inputs, count);
}

Extrapolation TransformedOutput::extrapolation(const std::vector<double*>& inputs,
                                               std::size_t count,
                                               const std::vector<std::string>& names) const
{
    return impl->inner->extrapolation(inputs, count, names);
}

std::vector<char> TransformedOutput::outsideCases(const std::vector<double*>& inputs,
                                                  std::size_t count) const
{
    return impl->inner->outsideCases(inputs, count);
}

PredictorDescription TransformedOutput::predictorDescription(int offset) const
{
    const Impl::Fit& fit = impl->fit(offset);
    PredictorDescription description = impl->inner->predictorDescription(fit.innerOffset);
    description.transform = fit.transform;
    return description;
}

std::vector<double> TransformedOutput::standardErrors(const std::vector<double*>& inputs,
                                                      int offset, ErrorKind kind,
                                                      std::size_t count) const
{
    impl->columns.requirePoints(inputs, count);
    const Impl::Fit& fit = impl->fit(offset);
    std::vector<double> errors = impl->inner->standardErrors(inputs, fit.innerOffset, kind, count);
    if (fit.transform == OutputTransform::None) {
        return errors;
    }
    std::vector<double> predictions(count);
    std::vector<double*> results = {predictions.data()};
    impl->inner->interpolateDependentValues(inputs, {fit.innerOffset}, results, count);
    for (std::size_t i = 0; i < count; ++i) {
        errors[i] = Impl::standardError(fit.transform, predictions[i], errors[i]);
    }
    return errors;
}

PredictionIntervals TransformedOutput::predictionIntervals(const std::vector<double*>& inputs,
                                                           int offset, double level,
                                                           std::size_t count) const
{
    impl->columns.requirePoints(inputs, count);
    const Impl::Fit& fit = impl->fit(offset);
    PredictionIntervals intervals =
        impl->inner->predictionIntervals(inputs, fit.innerOffset, level, count);
    OutputTransforms::invert(fit.transform, intervals.lower.data(), count);
    OutputTransforms::invert(fit.transform, intervals.upper.data(), count);
    return intervals;
}

double TransformedOutput::intervalQuantile(int offset, double level) const
{
    return impl->inner->intervalQuantile(impl->fit(offset).innerOffset, level);
}

double TransformedOutput::confidenceQuantile(int offset, double level) const
{
    return impl->inner->confidenceQuantile(impl->fit(offset).innerOffset, level);
}

CalibrationReport TransformedOutput::calibrationReport(int offset) const
{
    return impl->inner->calibrationReport(impl->fit(offset).innerOffset);
}

std::vector<LeaveOneOutPrediction> TransformedOutput::leaveOneOutPredictions(int offset) const
{
    return impl->leaveOneOutPredictions(offset, impl->fit(offset));
}
