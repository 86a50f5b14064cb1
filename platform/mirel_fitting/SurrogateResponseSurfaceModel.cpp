#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <mirel_fitting/cases/ArgumentCheck.h>
#include <mirel_fitting/cases/CaseRanges.h>
#include <mirel_fitting/numerics/Distributions.h>
#include <mirel_fitting/responsesurface/ResponseSurfaceFit.h>

#include <algorithm>
#include <map>

static_assert(SurrogateResponseSurfaceModel::maxTerms == PolynomialForm::maxTerms);

class SurrogateResponseSurfaceModel::Impl
{
public:
    Impl(const std::vector<double*>& independentColumns,
         const std::vector<double*>& dependentColumns, std::size_t rowCount,
         const PolynomialForm& wanted, Selection selection, const CaseDesign& design = {})
        : columns(independentColumns, dependentColumns, rowCount),
          ranges(independentColumns, rowCount),
          fit(independentColumns, fittable(dependentColumns), rowCount, wanted, selection, design)
    {}

    /** The position among the outputs that are fitted. */
    std::size_t position(int offset) const
    {
        columns.requireOutput(offset);
        std::size_t result = 0;
        for (int earlier = 0; earlier < offset; ++earlier) {
            result += columns.isFittable(static_cast<std::size_t>(earlier)) ? 1 : 0;
        }
        return result;
    }

    const IntervalCalibration& calibration(int offset)
    {
        const auto known = calibrations.find(offset);
        return known != calibrations.end()
                   ? known->second
                   : calibrations.emplace(offset, fit.intervalCalibration(position(offset)))
                         .first->second;
    }

    ArgumentCheck columns;
    CaseRanges ranges;
    std::map<int, IntervalCalibration> calibrations; // of the outputs whose intervals were wanted
    ResponseSurfaceFit fit;                          // of the outputs that are finite

private:
    std::vector<double*> fittable(const std::vector<double*>& dependentColumns) const
    {
        std::vector<double*> result;
        for (std::size_t offset = 0; offset < dependentColumns.size(); ++offset) {
            if (columns.isFittable(offset)) {
                result.push_back(dependentColumns[offset]);
            }
        }
        return result;
    }
};

SurrogateResponseSurfaceModel::SurrogateResponseSurfaceModel(
    const std::vector<double*>& independentColumns, const std::vector<double*>& dependentColumns,
    std::size_t rowCount)
    : SurrogateResponseSurfaceModel(independentColumns, dependentColumns, rowCount,
                                    ResponseSurfaceOptions())
{}

SurrogateResponseSurfaceModel::SurrogateResponseSurfaceModel(
    const std::vector<double*>& independentColumns, const std::vector<double*>& dependentColumns,
    std::size_t rowCount, const ResponseSurfaceOptions& options, const CaseDesign& design,
    Fallback fallback)
    : impl(std::make_unique<Impl>(
          independentColumns, dependentColumns, rowCount,
          PolynomialForm::of(options, independentColumns.size(), fallback != Fallback::Linear),
          options.selection, design))
{}

SurrogateResponseSurfaceModel::SurrogateResponseSurfaceModel(
    const std::vector<double*>& independentColumns, const std::vector<double*>& dependentColumns,
    std::size_t rowCount, int highestOrder)
    : impl(std::make_unique<Impl>(independentColumns, dependentColumns, rowCount,
                                  PolynomialForm{highestOrder, true}, Selection::All))
{}

std::size_t SurrogateResponseSurfaceModel::termCount(const ResponseSurfaceOptions& options,
                                                     const std::vector<bool>& isVarying)
{
    const PolynomialForm form = PolynomialForm::of(options, isVarying.size());
    if (!form.formula) {
        return form.termCount(
            static_cast<std::size_t>(std::count(isVarying.begin(), isVarying.end(), true)));
    }
    const std::vector<TermFormula::Term>& terms = form.formula->terms();
    return 1 + static_cast<std::size_t>(
                   std::count_if(terms.begin(), terms.end(), [&](const TermFormula::Term& term) {
                       return std::all_of(term.begin(), term.end(),
                                          [&](std::size_t input) { return isVarying[input]; });
                   }));
}

SurrogateResponseSurfaceModel::~SurrogateResponseSurfaceModel() = default;

void SurrogateResponseSurfaceModel::activateDependentVariables(const std::set<int>& offsets)
{
    // All outputs are fitted since construction.
    impl->columns.requireOutputs(offsets);
}

void SurrogateResponseSurfaceModel::interpolateDependentValues(const std::vector<double*>& inputs,
                                                               const std::set<int>& offsets,
                                                               std::vector<double*>& outputs,
                                                               std::size_t count) const
{
    impl->columns.requireEvaluation(inputs, offsets, outputs, count);
    std::vector<std::size_t> wanted;
    for (const int offset : offsets) {
        wanted.push_back(impl->position(offset));
    }
    impl->fit.predictor().predict(inputs, wanted, outputs, count);
}

bool SurrogateResponseSurfaceModel::surfaceCoefficientInformationAvailable() const
{
    return true;
}

bool SurrogateResponseSurfaceModel::qualityMetricInformationAvailable() const
{
    return true;
}

std::string SurrogateResponseSurfaceModel::surfaceCoefficientInformation(int offset) const
{
    return impl->fit.equationText(impl->position(offset));
}

std::string SurrogateResponseSurfaceModel::qualityMetricInformation(int offset) const
{
    return impl->fit.qualityText(impl->position(offset));
}

FitMetrics SurrogateResponseSurfaceModel::fitMetrics(int offset) const
{
    return impl->fit.metrics(impl->position(offset));
}

std::vector<std::string>
SurrogateResponseSurfaceModel::fitWarnings(int offset,
                                           const std::vector<std::string>& inputNames) const
{
    return impl->fit.warnings(impl->position(offset), InputNames(inputNames));
}

std::vector<std::string>
SurrogateResponseSurfaceModel::fitNotes(int offset,
                                        const std::vector<std::string>& inputNames) const
{
    return impl->fit.notes(impl->position(offset), InputNames(inputNames));
}

std::vector<double>
SurrogateResponseSurfaceModel::extrapolations(const std::vector<double*>& inputs,
                                              std::size_t count) const
{
    impl->columns.requirePoints(inputs, count);
    return impl->ranges.distances(inputs, count);
}

Extrapolation
SurrogateResponseSurfaceModel::extrapolation(const std::vector<double*>& inputs, std::size_t count,
                                             const std::vector<std::string>& inputNames) const
{
    impl->columns.requirePoints(inputs, count);
    return impl->ranges.extrapolation(inputs, count, InputNames(inputNames),
                                      impl->fit.unsupported(impl->ranges, inputs, count));
}

std::vector<char> SurrogateResponseSurfaceModel::outsideCases(const std::vector<double*>& inputs,
                                                              std::size_t count) const
{
    impl->columns.requirePoints(inputs, count);
    return impl->ranges.outside(inputs, count, impl->fit.unsupported(impl->ranges, inputs, count));
}

PredictorDescription SurrogateResponseSurfaceModel::predictorDescription(int offset) const
{
    PredictorDescription description = impl->fit.description(impl->position(offset));
    description.inputs = impl->ranges.ranges();
    return description;
}

std::vector<double>
SurrogateResponseSurfaceModel::standardErrors(const std::vector<double*>& inputs, int offset,
                                              ErrorKind kind, std::size_t count) const
{
    impl->columns.requirePoints(inputs, count);
    return impl->fit.standardErrors(impl->position(offset), inputs, kind == ErrorKind::Observation,
                                    count);
}

double SurrogateResponseSurfaceModel::intervalQuantile(int offset, double level) const
{
    Distributions::requireLevel(level);
    return impl->calibration(offset).quantile(level);
}

double SurrogateResponseSurfaceModel::confidenceQuantile(int offset, double level) const
{
    Distributions::requireLevel(level);
    return impl->calibration(offset).studentQuantile(level);
}

CalibrationReport SurrogateResponseSurfaceModel::calibrationReport(int offset) const
{
    return impl->calibration(offset).report();
}

std::vector<LeaveOneOutPrediction>
SurrogateResponseSurfaceModel::leaveOneOutPredictions(int offset) const
{
    return impl->fit.leaveOneOutPredictions(impl->position(offset));
}

ResponseSurfaceStatistics
SurrogateResponseSurfaceModel::responseSurfaceStatistics(int offset, double level,
                                                         InputCoding coding) const
{
    Distributions::requireLevel(level);
    return impl->fit.statistics(impl->position(offset), level, coding);
}
