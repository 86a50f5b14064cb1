#include <mirel_fitting/KrigingSurrogateModel.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/cases/CaseRanges.h>
#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/cases/TrainingColumns.h>
#include <mirel_fitting/kriging/fit/KrigingFit.h>
#include <mirel_fitting/kriging/fit/KrigingTexts.h>
#include <mirel_fitting/numerics/Distributions.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace {

using Error = SurrogateModelInterface::Error;

std::size_t checkedCount(int rowCount)
{
    if (rowCount < 0) {
        throw Error("A model cannot be fitted to " + std::to_string(rowCount) + " cases.");
    }
    return static_cast<std::size_t>(rowCount);
}

void requirePositive(double value, const std::string& name)
{
    if (!(value > 0.0) || !std::isfinite(value)) {
        throw Error(name + " has to be a positive number, not " + KrigingTexts::figure(value) +
                    ".");
    }
}

KrigingOptions checkedOptions(double tolerance, const std::vector<double>& correlationLengths,
                              int trendOrder, double initialCorrelationLength, double nugget,
                              int nuggetMode, std::size_t inputs)
{
    requirePositive(tolerance, "The tolerance");
    requirePositive(initialCorrelationLength, "The initial correlation length");
    if (!correlationLengths.empty() && correlationLengths.size() != inputs) {
        throw Error("There have to be as many correlation lengths as inputs, " +
                    std::to_string(inputs) + ", or none, not " +
                    std::to_string(correlationLengths.size()) + ".");
    }
    for (std::size_t k = 0; k < correlationLengths.size(); ++k) {
        // Infinity is a length too: an input without influence.
        if (!(correlationLengths[k] > 0.0)) {
            throw Error("The correlation length of V" + std::to_string(k + 1) +
                        " has to be positive, not " + KrigingTexts::figure(correlationLengths[k]) +
                        ".");
        }
    }
    if (trendOrder < 0 || trendOrder > 2) {
        throw Error("The order of the trend has to be 0, 1 or 2, not " +
                    std::to_string(trendOrder) + ".");
    }
    if (!(nugget >= 0.0) || !std::isfinite(nugget)) {
        throw Error("The nugget has to be a number that is not negative, not " +
                    KrigingTexts::figure(nugget) + ".");
    }
    if (nuggetMode != 0 && nuggetMode != 1) {
        throw Error("The nugget mode has to be 0 (estimated) or 1 (fixed), not " +
                    std::to_string(nuggetMode) + ".");
    }

    KrigingOptions options;
    options.tolerance = tolerance;
    options.correlationLengths = correlationLengths;
    options.trendOrder = trendOrder;
    options.initialCorrelationLength = initialCorrelationLength;
    options.nugget = nugget;
    options.isNuggetFixed = nuggetMode == 1;
    return options;
}

bool isCorrelated(const KrigingReport& report)
{
    return std::any_of(report.correlationLengths.begin(), report.correlationLengths.end(),
                       [](double length) { return std::isfinite(length); });
}

} // namespace

class KrigingSurrogateModel::Impl
{
public:
    Impl(const std::vector<double*>& independentColumns,
         const std::vector<double*>& dependentColumns, std::size_t rowCount)
        : columns(independentColumns, dependentColumns, rowCount),
          ranges(independentColumns, rowCount)
    {
        KrigingCases::requireRanges(independentColumns, rowCount);
        for (const double* column : independentColumns) {
            inputs.emplace_back(column, column + rowCount);
        }
        for (const double* column : dependentColumns) {
            outputs.emplace_back(column, column + rowCount);
        }
    }

    void requirePoints(const std::vector<double*>& inputs, std::size_t count) const
    {
        std::vector<double*> noOutputs;
        columns.requireEvaluation(inputs, {}, noOutputs, count);
    }

    const KrigingFit& fit(int offset)
    {
        columns.requireOutput(offset);
        const auto known = fits.find(offset);
        if (known != fits.end()) {
            return known->second;
        }
        // A fit that throws leaves no entry, so that it is tried again.
        return fits
            .emplace(offset, fitKriging(preparedCases(), outputs[static_cast<std::size_t>(offset)],
                                        options))
            .first->second;
    }

    /** Sorting many cases takes its time: it is a part of the first fit, which reports and can be
     *  cancelled, and not of construction. */
    const KrigingCases& preparedCases()
    {
        if (!cases) {
            std::vector<double*> columnsOfInputs;
            for (std::vector<double>& input : inputs) {
                columnsOfInputs.push_back(input.data());
            }
            const FitProgress::Portion progress(0.0, 0.0, "Preparing the cases");
            cases = std::make_unique<const KrigingCases>(columnsOfInputs, columns.cases());
            inputs = {};
        }
        return *cases;
    }

    TrainingColumns columns;
    CaseRanges ranges;
    std::vector<std::vector<double>> inputs; // until the cases are prepared
    std::unique_ptr<const KrigingCases> cases;
    std::vector<std::vector<double>> outputs;
    KrigingOptions options;
    std::map<int, KrigingFit> fits;
};

KrigingSurrogateModel::KrigingSurrogateModel(const std::vector<double*>& independentColumns,
                                             const std::vector<double*>& dependentColumns,
                                             int rowCount, double tolerance,
                                             const std::vector<double>& correlationLengths,
                                             int trendOrder, double initialCorrelationLength,
                                             double nugget, int nuggetMode)
    : impl(std::make_unique<Impl>(independentColumns, dependentColumns, checkedCount(rowCount)))
{
    impl->options =
        checkedOptions(tolerance, correlationLengths, trendOrder, initialCorrelationLength, nugget,
                       nuggetMode, independentColumns.size());
}

KrigingSurrogateModel::~KrigingSurrogateModel() = default;

void KrigingSurrogateModel::activateDependentVariables(const std::set<int>& offsets)
{
    impl->columns.requireOutputs(offsets);
    for (const int offset : offsets) {
        impl->fit(offset);
    }
}

void KrigingSurrogateModel::interpolateDependentValues(const std::vector<double*>& inputs,
                                                       const std::set<int>& offsets,
                                                       std::vector<double*>& outputs,
                                                       std::size_t count) const
{
    impl->columns.requireEvaluation(inputs, offsets, outputs, count);
    if (count == 0) {
        for (const int offset : offsets) {
            impl->fit(offset);
        }
        return;
    }
    const GridPoints points(inputs, count);
    std::size_t k = 0;
    for (const int offset : offsets) {
        impl->fit(offset).predictor.predict(points, outputs[k++]);
    }
}

bool KrigingSurrogateModel::surfaceCoefficientInformationAvailable() const
{
    return false;
}

bool KrigingSurrogateModel::qualityMetricInformationAvailable() const
{
    return true;
}

std::string KrigingSurrogateModel::surfaceCoefficientInformation(int offset) const
{
    const KrigingFit& fit = impl->fit(offset);
    if (!isCorrelated(fit.report)) {
        return fit.trendText + "\n";
    }
    return fit.trendText + " + the correlated part of a Kriging model, which has no equation\n" +
           KrigingTexts::lengths(fit.report);
}

std::string KrigingSurrogateModel::qualityMetricInformation(int offset) const
{
    return KrigingTexts::quality(impl->fit(offset));
}

FitMetrics KrigingSurrogateModel::fitMetrics(int offset) const
{
    return impl->fit(offset).metrics;
}

std::vector<std::string> KrigingSurrogateModel::fitWarnings(int offset) const
{
    return impl->fit(offset).warnings;
}

KrigingReport KrigingSurrogateModel::krigingReport(int offset) const
{
    return impl->fit(offset).report;
}

void KrigingSurrogateModel::standardErrors(const std::vector<double*>& inputs,
                                           const std::set<int>& offsets, Kind kind,
                                           std::vector<double*>& errors, std::size_t count) const
{
    impl->columns.requireEvaluation(inputs, offsets, errors, count);
    std::size_t k = 0;
    for (const int offset : offsets) {
        const KrigingFit& fit = impl->fit(offset);
        if (count > 0) {
            fit.predictor.standardErrors(inputs, count, kind == Kind::Observation, errors[k]);
        }
        ++k;
    }
}

void KrigingSurrogateModel::predictionIntervals(const std::vector<double*>& inputs,
                                                const std::set<int>& offsets, double level,
                                                std::vector<double*>& lower,
                                                std::vector<double*>& upper,
                                                std::size_t count) const
{
    Distributions::requireLevel(level);
    impl->columns.requireEvaluation(inputs, offsets, upper, count);
    interpolateDependentValues(inputs, offsets, lower, count);
    standardErrors(inputs, offsets, Kind::Observation, upper, count);
    const double quantile = Distributions::normalQuantile(level);
    for (std::size_t output = 0; output < offsets.size(); ++output) {
        for (std::size_t k = 0; k < count; ++k) {
            const double prediction = lower[output][k];
            const double reach = quantile * upper[output][k];
            lower[output][k] = prediction - reach;
            upper[output][k] = prediction + reach;
        }
    }
}

double KrigingSurrogateModel::intervalQuantile(int offset, double level) const
{
    impl->columns.requireOutput(offset);
    return Distributions::normalQuantile(level);
}

std::vector<LeaveOneOutPrediction> KrigingSurrogateModel::leaveOneOutPredictions(int offset) const
{
    const KrigingFit& fit = impl->fit(offset);
    return fit.leftOut.predictions(impl->preparedCases(), fit.predictor);
}

void KrigingSurrogateModel::gradients(const std::vector<double*>& inputs, int offset,
                                      const std::vector<double*>& gradients,
                                      std::size_t count) const
{
    impl->requirePoints(inputs, count);
    if (gradients.size() != inputs.size()) {
        throw Error("There have to be as many columns for derivatives as inputs, " +
                    std::to_string(inputs.size()) + ", not " + std::to_string(gradients.size()) +
                    ".");
    }
    for (std::size_t k = 0; k < gradients.size(); ++k) {
        if (count > 0 && !gradients[k]) {
            throw Error("There is no column for the derivatives by V" + std::to_string(k + 1) +
                        ".");
        }
    }
    const KrigingFit& fit = impl->fit(offset);
    if (count > 0) {
        fit.predictor.differentiate(inputs, count, gradients);
    }
}

void KrigingSurrogateModel::extrapolations(const std::vector<double*>& inputs, double* distances,
                                           std::size_t count) const
{
    impl->requirePoints(inputs, count);
    impl->ranges.distances(inputs, count, distances);
}

std::string KrigingSurrogateModel::extrapolationWarning(const std::vector<double*>& inputs,
                                                        std::size_t count) const
{
    impl->requirePoints(inputs, count);
    return impl->ranges.warning(inputs, count);
}

PredictorDescription KrigingSurrogateModel::predictorDescription(int offset) const
{
    PredictorDescription description = impl->fit(offset).predictor.model().description();
    description.inputs = impl->ranges.ranges();
    return description;
}
