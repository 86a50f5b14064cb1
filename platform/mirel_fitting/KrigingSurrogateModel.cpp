#include <mirel_fitting/KrigingSurrogateModel.h>

#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/cases/ArgumentCheck.h>
#include <mirel_fitting/cases/CaseRanges.h>
#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/kriging/fit/KrigingFitInput.h>
#include <mirel_fitting/kriging/fit/KrigingFitter.h>
#include <mirel_fitting/kriging/fit/KrigingIntervals.h>
#include <mirel_fitting/kriging/grid/KrigingGrid.h>
#include <mirel_fitting/kriging/prediction/KrigingSupport.h>
#include <mirel_fitting/kriging/report/KrigingTexts.h>
#include <mirel_fitting/numerics/Distributions.h>
#include <mirel_fitting/numerics/NumberText.h>

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
        throw Error(name + " has to be a positive number, not " + NumberText::rounded(value) + ".");
    }
}

/** @param varying how many of the inputs are not constant. */
void check(const KrigingOptions& options, std::size_t inputs, std::size_t varying)
{
    const std::vector<double>& lengths = options.correlationLengths;
    requirePositive(options.tolerance, "The tolerance");
    requirePositive(options.initialCorrelationLength, "The initial correlation length");
    if (!lengths.empty() && lengths.size() != inputs) {
        throw Error("There have to be as many correlation lengths as inputs, " +
                    std::to_string(inputs) + ", or none, not " + std::to_string(lengths.size()) +
                    ".");
    }
    if (lengths.empty() && varying > KrigingSurrogateModel::maxInputs) {
        throw Error("A Kriging model takes at most " +
                    std::to_string(KrigingSurrogateModel::maxInputs) + " inputs that vary, not " +
                    std::to_string(varying) + ", unless their correlation lengths are given.");
    }
    for (std::size_t k = 0; k < lengths.size(); ++k) {
        // Infinity is a length too: an input without influence.
        if (!(lengths[k] > 0.0)) {
            throw Error("The correlation length of V" + std::to_string(k + 1) +
                        " has to be positive, not " + NumberText::rounded(lengths[k]) + ".");
        }
    }
    if (options.trendOrder < 0 || options.trendOrder > 2) {
        throw Error("The order of the trend has to be 0, 1 or 2, not " +
                    std::to_string(options.trendOrder) + ".");
    }
    if (!(options.nugget >= 0.0) || !std::isfinite(options.nugget)) {
        throw Error("The nugget has to be a number that is not negative, not " +
                    NumberText::rounded(options.nugget) + ".");
    }
    const int nuggetMode = static_cast<int>(options.nuggetMode);
    if (nuggetMode != 0 && nuggetMode != 1) {
        throw Error("The nugget mode has to be 0 (estimated) or 1 (fixed), not " +
                    std::to_string(nuggetMode) + ".");
    }
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
         const std::vector<double*>& dependentColumns, std::size_t rowCount,
         const KrigingOptions& options)
        : columns(independentColumns, dependentColumns, rowCount),
          ranges(independentColumns, rowCount), options{options, {}}
    {
        KrigingCases::requireRanges(independentColumns, rowCount);
        for (const double* column : independentColumns) {
            inputs.emplace_back(column, column + rowCount);
        }
        for (const double* column : dependentColumns) {
            outputs.emplace_back(column, column + rowCount);
        }
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

    const IntervalCalibration& calibration(int offset)
    {
        const KrigingFit& fitted = fit(offset);
        const auto known = calibrations.find(offset);
        if (known != calibrations.end()) {
            return known->second;
        }
        const std::vector<double>& output = outputs[static_cast<std::size_t>(offset)];
        const KrigingFitInput input{preparedCases(), output, options, OutputScale::of(output)};
        return calibrations.emplace(offset, calibrateIntervals(input, fitted)).first->second;
    }

    /** Sorting many cases takes its time: it is a part of the first fit, which reports and can be
     *  cancelled, and not of construction. */
    const KrigingCases& preparedCases()
    {
        if (!cases) {
            const FitProgress::Portion progress(0.0, 0.0, "Preparing the cases");
            cases = std::make_unique<const KrigingCases>(pointersTo(inputs), columns.cases());
            inputs = {};
        }
        return *cases;
    }

    const KrigingSupport& caseSupport()
    {
        if (!support) {
            support = std::make_unique<const KrigingSupport>(preparedCases(), ranges);
        }
        return *support;
    }

    ArgumentCheck columns;
    CaseRanges ranges;
    std::vector<std::vector<double>> inputs; // until the cases are prepared
    std::unique_ptr<const KrigingCases> cases;
    std::unique_ptr<const KrigingSupport> support; // once it was asked for
    std::vector<std::vector<double>> outputs;
    KrigingFitOptions options;
    std::map<int, KrigingFit> fits;
    std::map<int, IntervalCalibration> calibrations; // of the outputs whose intervals were wanted
};

KrigingSurrogateModel::KrigingSurrogateModel(const std::vector<double*>& independentColumns,
                                             const std::vector<double*>& dependentColumns,
                                             int rowCount, const KrigingOptions& options)
    : impl(std::make_unique<Impl>(independentColumns, dependentColumns, checkedCount(rowCount),
                                  options))
{
    const std::vector<PredictorDescription::InputRange> ranges = impl->ranges.ranges();
    const auto varying = std::count_if(ranges.begin(), ranges.end(),
                                       [](const auto& range) { return !range.isConstant; });
    check(options, ranges.size(), static_cast<std::size_t>(varying));
}

KrigingSurrogateModel::KrigingSurrogateModel(const std::vector<double*>& independentColumns,
                                             const std::vector<double*>& dependentColumns,
                                             int rowCount, double tolerance,
                                             const std::vector<double>& correlationLengths,
                                             int trendOrder, double initialCorrelationLength,
                                             double nugget, int nuggetMode)
    : KrigingSurrogateModel(independentColumns, dependentColumns, rowCount,
                            {tolerance, correlationLengths, trendOrder, initialCorrelationLength,
                             nugget, static_cast<KrigingOptions::NuggetMode>(nuggetMode)})
{}

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
    const std::vector<ProductGrid> grids = ProductGrid::split(inputs, count);
    std::size_t k = 0;
    for (const int offset : offsets) {
        predictGrids(impl->fit(offset).predictor, inputs, grids, outputs[k++]);
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
    const KrigingFit& fit = impl->fit(offset);
    FitMetrics metrics = fit.metrics;
    metrics.logLikelihood = fit.report.logLikelihood;
    return metrics;
}

std::vector<std::string>
KrigingSurrogateModel::fitWarnings(int offset, const std::vector<std::string>& inputNames) const
{
    return KrigingTexts::warnings(impl->fit(offset), InputNames(inputNames));
}

std::vector<std::string> KrigingSurrogateModel::fitNotes(int offset,
                                                         const std::vector<std::string>&) const
{
    return impl->fit(offset).notes;
}

KrigingReport KrigingSurrogateModel::krigingReport(int offset) const
{
    return impl->fit(offset).report;
}

std::vector<double> KrigingSurrogateModel::standardErrors(const std::vector<double*>& inputs,
                                                          int offset, ErrorKind kind,
                                                          std::size_t count) const
{
    impl->columns.requirePoints(inputs, count);
    const KrigingFit& fit = impl->fit(offset);
    std::vector<double> errors(count);
    if (count > 0) {
        fit.predictor.standardErrors(inputs, count, kind == ErrorKind::Observation, errors.data());
    }
    return errors;
}

double KrigingSurrogateModel::intervalQuantile(int offset, double level) const
{
    Distributions::requireLevel(level);
    return impl->calibration(offset).quantile(level);
}

CalibrationReport KrigingSurrogateModel::calibrationReport(int offset) const
{
    return impl->calibration(offset).report();
}

std::vector<LeaveOneOutPrediction> KrigingSurrogateModel::leaveOneOutPredictions(int offset) const
{
    const KrigingFit& fit = impl->fit(offset);
    return fit.leftOut.predictions(impl->preparedCases(), fit.predictor);
}

std::vector<std::vector<double>>
KrigingSurrogateModel::gradients(const std::vector<double*>& inputs, int offset,
                                 std::size_t count) const
{
    impl->columns.requirePoints(inputs, count);
    const KrigingFit& fit = impl->fit(offset);
    std::vector<std::vector<double>> gradients(inputs.size(), std::vector<double>(count));
    if (count > 0) {
        fit.predictor.differentiate(inputs, count, pointersTo(gradients));
    }
    return gradients;
}

std::vector<double> KrigingSurrogateModel::extrapolations(const std::vector<double*>& inputs,
                                                          std::size_t count) const
{
    impl->columns.requirePoints(inputs, count);
    return impl->ranges.distances(inputs, count);
}

Extrapolation KrigingSurrogateModel::extrapolation(const std::vector<double*>& inputs,
                                                   std::size_t count,
                                                   const std::vector<std::string>& inputNames) const
{
    impl->columns.requirePoints(inputs, count);
    const std::vector<char> unsupported =
        count > 0 ? impl->caseSupport().unsupported(inputs, count) : std::vector<char>();
    return impl->ranges.extrapolation(inputs, count, InputNames(inputNames), unsupported);
}

std::vector<char> KrigingSurrogateModel::outsideCases(const std::vector<double*>& inputs,
                                                      std::size_t count) const
{
    impl->columns.requirePoints(inputs, count);
    std::vector<char> unsupported;
    // Of more at once a sample would be judged.
    for (std::size_t begin = 0; begin < count; begin += KrigingSupport::maxPoints) {
        std::vector<double*> block = inputs;
        for (double*& column : block) {
            column += begin;
        }
        const std::vector<char> flags = impl->caseSupport().unsupported(
            block, std::min(KrigingSupport::maxPoints, count - begin));
        unsupported.insert(unsupported.end(), flags.begin(), flags.end());
    }
    return impl->ranges.outside(inputs, count, std::move(unsupported));
}

PredictorDescription KrigingSurrogateModel::predictorDescription(int offset) const
{
    PredictorDescription description = impl->fit(offset).predictor.model().description();
    description.inputs = impl->ranges.ranges();
    return description;
}
