#include <mirel_fitting/kriging/fit/KrigingFitter.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/cases/ContradictingCases.h>
#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/cases/MergedOutput.h>
#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/kriging/fit/KrigingFitReport.h>
#include <mirel_fitting/kriging/fit/KrigingTexts.h>
#include <mirel_fitting/kriging/fit/KrigingWarnings.h>
#include <mirel_fitting/kriging/fit/LargeKriging.h>
#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/search/KrigingSearch.h>
#include <mirel_fitting/kriging/search/KrigingSubsetSearch.h>
#include <mirel_fitting/kriging/search/KrigingTrendChoice.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <optional>
#include <utility>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double twoPi = 2.0 * std::acos(-1.0);
// Fraction of the work that is done when the parameters are found.
constexpr double measuring = 0.99;

std::vector<double> ascending(std::vector<double> values)
{
    FitProgress::advance();
    std::sort(values.begin(), values.end());
    return values;
}

bool hasScatter(const KrigingData& merged)
{
    return std::any_of(merged.withinSquares.begin(), merged.withinSquares.end(),
                       [](double squares) { return squares > 0.0; });
}

/** The steps of one fit, and what they hand to each other. */
class Fitter
{
public:
    Fitter(const KrigingCases& cases, const std::vector<double>& output,
           const KrigingFitOptions& options)
        : cases(cases), output(output), options(options), data(std::make_shared<KrigingData>())
    {}

    KrigingFit run();

private:
    void standardise();
    void mergeRows();
    void warnOfConflicts(bool interpolates);
    static void averageRows(KrigingData& merged);
    void chooseTrend();
    void searchWithTrends();
    void warnOfTrend();
    bool isExplainedByTrend() const;
    KrigingSearch::Settings searchSettings() const;
    void search();
    void searchLengths();
    int refinements() const;
    bool isScatterNegligible(const KrigingData& merged) const;
    void warnOfRaisedNugget();
    bool isNuggetWanted() const;
    bool refineUntilCasesAreMet(KrigingLikelihood& likelihood) const;
    FittedKriging commonParts() const;
    KrigingFit withCorrelation();
    void reportCorrelation(KrigingFit& fit, double processVariance, double condition,
                           bool interpolates);
    void reportLikelihood(KrigingFit& fit) const;
    KrigingFit ofManyCases();
    static bool areCasesMet(const LargeKriging::Result& large);
    bool isExplainedBy(const std::vector<double>& coefficients, const KrigingData& all) const;
    KrigingFit withTrendAlone();
    KrigingFit constant();
    std::vector<std::size_t> allPoints() const;
    void measure(KrigingFit& fit, const KrigingData& all, const std::vector<std::size_t>& points,
                 const std::vector<double>& residuals,
                 const std::vector<double>& leaveOneOutResiduals) const
    {
        fit.metrics.terms = data->terms;
        reportOf().measure(fit, {all, replicatesAtPoint, withinSquaresAtPoint, points, residuals,
                                 leaveOneOutResiduals});
    }
    void keepLeftOut(KrigingFit& fit, const KrigingData& all,
                     const KrigingLeaveOneOut::Points& left) const
    {
        fit.leftOut = KrigingLeaveOneOut(cases, output, all, left, offset, scale);
    }
    void reportIndependent(KrigingFit& fit, double variance, std::size_t count) const;
    KrigingFitReport reportOf() const { return {cases, output, offset, scale}; }

    const KrigingCases& cases;
    const std::vector<double>& output;
    const KrigingFitOptions& options;
    double offset = 0.0; // output = offset + scale * standardised output
    double scale = 1.0;
    std::shared_ptr<KrigingData> data;
    std::vector<double> replicatesAtPoint; // that count
    std::vector<double> withinSquaresAtPoint;
    std::size_t conflicts = 0; // points where rows differ
    std::shared_ptr<const KrigingTrend> trend;
    std::optional<KrigingWarnings::Lowered> lowered; // the trend, where cases are few
    KrigingSearch::Result found;
    double noiseShare = 0.0; // of the output's variance
    std::vector<std::string> warnings;
};

/** The range of the outputs becomes about 1, whatever its unit. */
void Fitter::standardise()
{
    const auto [smallest, largest] = std::minmax_element(output.begin(), output.end());
    // Halved first: the difference of the two largest numbers has no double.
    const double halfRange = 0.5 * *largest - 0.5 * *smallest;
    offset = *smallest + halfRange;
    if (!(halfRange > 0.0)) {
        offset = *smallest;
        return;
    }
    // Sums in ascending order, so that no bit depends on the order of the cases.
    const std::vector<double> sorted = ascending(output);
    const auto n = static_cast<double>(output.size());
    double sum = 0.0;
    for (const double y : sorted) {
        sum += (y - offset) / halfRange;
    }
    const double mean = sum / n;
    double squares = 0.0;
    for (const double y : sorted) {
        const double deviation = (y - offset) / halfRange - mean;
        squares += deviation * deviation;
    }
    offset += mean * halfRange;
    scale = halfRange * std::sqrt(squares / n);
}

/** One case per distinct point. */
void Fitter::mergeRows()
{
    std::vector<double> standardised;
    standardised.reserve(output.size());
    for (const double y : output) {
        standardised.push_back((y - offset) / scale);
    }
    const MergedOutput merged(cases, standardised);
    data->cases = cases.pointCount();
    data->inputs = cases.activeInputs().size();
    data->coordinates = cases.coordinates();
    data->output = merged.means;
    data->replicates = replicatesAtPoint = merged.replicates;
    data->withinSquares = withinSquaresAtPoint = merged.withinSquares;
    if (options.isNuggetFixed()) {
        // Replicates that differ are unlikely under a nugget that was not fitted to them, and
        // infinitely so under none: their mean is then a case like the others.
        averageRows(*data);
    }
    const std::size_t copies = merged.copies;
    if (copies > 0) {
        warnings.push_back(KrigingWarnings::ofCopies(copies, merged.conflicts == 0));
    }
    conflicts = merged.conflicts;
    const std::size_t places = ContradictingCases::places(*data);
    if (places > 0) {
        warnings.push_back(KrigingWarnings::ofNearCases(places));
    }
}

void Fitter::warnOfConflicts(bool interpolates)
{
    if (conflicts > 0) {
        warnings.push_back(KrigingWarnings::ofConflicts(conflicts, interpolates));
    }
}

/** The mean of the rows at a point becomes a case like any other. */
void Fitter::averageRows(KrigingData& merged)
{
    merged.replicates.assign(merged.cases, 1.0);
    merged.withinSquares.assign(merged.cases, 0.0);
}

void Fitter::chooseTrend()
{
    const std::size_t lengths = options.correlationLengths.empty() ? data->inputs : 0;
    const std::size_t variance = 1;
    trend = std::make_shared<KrigingTrend>(data->cases, data->inputs, data->coordinates,
                                           options.trendOrder, lengths + variance);
    data->terms = trend->size();
    data->trend = trend->matrix();
}

void Fitter::warnOfTrend()
{
    if (lowered) {
        warnings.push_back(KrigingWarnings::ofLoweredTrend(*lowered, data->cases));
    } else if (trend->order() < options.trendOrder && data->inputs > 0) {
        warnings.push_back(
            KrigingWarnings::ofTooFewCases(options.trendOrder, trend->order(), data->cases));
    }
    const std::vector<std::string> dropped = trend->droppedNames(reportOf().inputNumbers());
    if (!dropped.empty()) {
        warnings.push_back(KrigingWarnings::ofDroppedTerms(dropped));
    }
}

/** Whether the residuals of least squares are rounding: then there is nothing to correlate. */
bool Fitter::isExplainedByTrend() const
{
    double largest = 0.0;
    double scatter = 0.0;
    for (std::size_t i = 0; i < data->cases; ++i) {
        largest = std::max(largest, std::fabs(offset / scale + data->output[i]));
        scatter = std::max(scatter, withinSquaresAtPoint[i] / replicatesAtPoint[i]);
    }
    const double rounding = 8.0 * std::numeric_limits<double>::epsilon() * (1.0 + largest);
    return std::sqrt(scatter) <= rounding &&
           std::sqrt(trend->leastSquares(data->output).variance) <= rounding;
}

KrigingSearch::Settings Fitter::searchSettings() const
{
    KrigingSearch::Settings settings;
    settings.tolerance = options.tolerance;
    settings.initialLength = options.initialCorrelationLength;
    settings.smallestNugget = options.nugget;
    settings.isNuggetFixed = options.isNuggetFixed();
    for (std::size_t k = 0; k < data->inputs && !options.correlationLengths.empty(); ++k) {
        const double length = options.correlationLengths[cases.activeInputs()[k]];
        // So short, every case stands alone; in shorter units the coordinates would overflow.
        constexpr double shortest = 1e-100;
        settings.fixedLengths.push_back(std::max(length / cases.range()[k], shortest));
    }
    return settings;
}

/** Number of steps with all cases after the search with a subset: by size, not by time, so that the
 *  same cases give the same model on every machine. */
int Fitter::refinements() const
{
    const KrigingSizes& sizes = options.sizes;
    if (data->cases > sizes.maxRefined) {
        return 0;
    }
    return data->cases > sizes.maxRefinedTwice ? 1 : 2;
}

void Fitter::searchLengths()
{
    const KrigingSizes& sizes = options.sizes;
    if (data->cases > sizes.maxSearched) {
        found = KrigingSubsetSearch::run(data, trend->order(), searchSettings(), sizes.searched,
                                         refinements());
    } else if (options.correlationLengths.empty() && KrigingTrendChoice::isNeeded(*trend, *data)) {
        searchWithTrends();
    } else {
        found = KrigingSearch::run(data, searchSettings());
    }
}

/**
 * Whether rows at the same point differ by less than the least nugget stands for, say by rounding.
 * The likelihood of such rows prefers an ever smaller process variance, and for its sake lengths
 * that do not suit the points.
 */
bool Fitter::isScatterNegligible(const KrigingData& merged) const
{
    return hasScatter(merged) && found.parameters.nugget <= searchSettings().leastNugget();
}

void Fitter::search()
{
    const KrigingSizes& sizes = options.sizes;
    const bool isSubset = data->cases > sizes.maxSearched;
    const double searching = isSubset ? 0.9 : measuring; // of the work
    const double once = hasScatter(*data) ? 0.5 * searching : searching;
    {
        const FitProgress::Portion portion(0.0, once);
        searchLengths();
    }
    if (isScatterNegligible(*data)) {
        averageRows(*data);
        const FitProgress::Portion portion(once, searching);
        searchLengths();
    }
    if (isSubset) {
        const bool isRefined = refinements() > 0 && options.correlationLengths.empty();
        warnings.push_back(KrigingWarnings::ofSubset(sizes.maxSearched, sizes.searched, isRefined));
    }
    warnOfTrend();
    warnOfRaisedNugget();
}

void Fitter::searchWithTrends()
{
    const int highest = trend->order();
    const KrigingTrendChoice::Result choice =
        KrigingTrendChoice::run(data, trend, searchSettings());
    trend = choice.trend;
    data = choice.data;
    found = choice.found;
    if (trend->order() < highest) {
        const double rows = std::accumulate(data->replicates.begin(), data->replicates.end(), 0.0);
        const auto inUnits = [&](KrigingTrendChoice::Quality quality) {
            quality.akaike += 2.0 * rows * std::log(scale);
            quality.leaveOneOutError *= scale;
            return quality;
        };
        lowered = {highest, trend->order(), inUnits(choice.quality),
                   inUnits(choice.qualityOfHighest)};
    }
}

void Fitter::warnOfRaisedNugget()
{
    if (found.isNuggetRaised) {
        warnings.push_back(KrigingWarnings::ofRaisedNugget(found.parameters.nugget));
    }
}

FittedKriging Fitter::commonParts() const
{
    FittedKriging parts;
    parts.inputs = cases.activeInputs();
    parts.minimum = cases.minimum();
    parts.range = cases.range();
    parts.trend = trend;
    parts.offset = offset;
    parts.scale = scale;
    parts.data = data;
    return parts;
}

/** Whether the user's lower bound stands for noise; up to the least nugget it does not. */
bool Fitter::isNuggetWanted() const
{
    return options.nugget > SearchPolicy().soundNugget;
}

/** @return false if the lengths are too long for what happens between the cases. */
bool Fitter::refineUntilCasesAreMet(KrigingLikelihood& likelihood) const
{
    constexpr double met = 1e-3; // of the output's deviation, root mean square

    likelihood.refineWithoutNugget();
    double squares = 0.0;
    for (const double residual : likelihood.residuals()) {
        squares += residual * residual;
    }
    return std::sqrt(squares / static_cast<double>(data->cases)) <= met;
}

KrigingFit Fitter::withCorrelation()
{
    search();
    const FitProgress::Portion progress(measuring, 1.0, "Measuring the fit");
    KrigingLikelihood likelihood(data);
    likelihood.evaluate(found.parameters.lengths, found.parameters.nugget);
    const bool interpolates = !isNuggetWanted() && !found.isNuggetRaised &&
                              found.parameters.nugget <= SearchPolicy().soundNugget &&
                              refineUntilCasesAreMet(likelihood);
    warnOfConflicts(interpolates);

    FittedKriging parts = commonParts();
    parts.processVariance = likelihood.processVariance();
    parts.nugget = found.parameters.nugget;
    parts.interpolates = interpolates;
    auto correlation =
        std::make_shared<MaternCorrelation>(data->cases, data->inputs, data->coordinates.data());
    correlation->setLengths(found.parameters.lengths);
    parts.correlation = std::move(correlation);
    parts.coefficients = likelihood.coefficients();
    parts.weights = likelihood.weights();

    KrigingFit fit{KrigingPredictor(std::move(parts)), {}, {}, {}, {}};
    reportCorrelation(fit, likelihood.processVariance(), likelihood.conditionEstimate(),
                      interpolates);
    reportLikelihood(fit);
    reportOf().addTrend(fit, *trend, likelihood.coefficients());
    std::vector<double> variances;
    const std::vector<double> leftOut = likelihood.leaveOneOutResiduals(&variances);
    const std::vector<std::size_t> points = allPoints();
    measure(fit, *data, points, likelihood.residuals(), leftOut);
    keepLeftOut(
        fit, *data,
        {points, leftOut, variances, likelihood.processVariance(), found.parameters.nugget});
    return fit;
}

void Fitter::reportCorrelation(KrigingFit& fit, double processVariance, double condition,
                               bool interpolates)
{
    fit.report.correlationLengths.assign(cases.inputCount(), infinity);
    fit.report.lengthBounds.assign(cases.inputCount(), KrigingReport::Bound::None);
    for (std::size_t k = 0; k < data->inputs; ++k) {
        const std::size_t input = cases.activeInputs()[k];
        fit.report.correlationLengths[input] = found.parameters.lengths[k] * cases.range()[k];
        if (!found.lengthBounds.empty()) {
            fit.report.lengthBounds[input] = found.lengthBounds[k];
        }
    }
    fit.report.nugget = found.parameters.nugget;
    fit.report.nuggetBound = found.nuggetBound;
    fit.report.processVariance = processVariance * scale * scale;
    if (!interpolates) {
        noiseShare = found.parameters.nugget * processVariance;
        fit.report.noiseDeviation = scale * std::sqrt(noiseShare);
    }
    fit.report.condition = condition;
}

void Fitter::reportLikelihood(KrigingFit& fit) const
{
    const double rows = std::accumulate(data->replicates.begin(), data->replicates.end(), 0.0);
    fit.report.logLikelihood = found.logLikelihood - rows * std::log(scale);
    if (!std::isinf(found.secondLogLikelihood)) {
        fit.report.secondLogLikelihood = found.secondLogLikelihood - rows * std::log(scale);
    }
}

/** More cases than one correlation matrix can hold, by LargeKriging. */
KrigingFit Fitter::ofManyCases()
{
    std::shared_ptr<const KrigingData> all = data;
    constexpr double choosing = 0.08; // of the work
    LargeKriging::Subset subset;
    {
        const FitProgress::Portion portion(0.0, choosing);
        subset.indices = spaceFillingSubset(*all, options.sizes.subset);
    }
    const FitProgress::Portion portion(choosing, 1.0);
    data = std::make_shared<KrigingData>(all->subset(subset.indices));
    const std::size_t warningsOfAll = warnings.size();
    chooseTrend();
    warnOfTrend();
    const std::vector<double> coefficients = trend->leastSquares(data->output).coefficients;
    if (isExplainedBy(coefficients, *all)) {
        data = std::make_shared<KrigingData>(*all);
        warnings.resize(warningsOfAll); // without those of the subset's trend
        chooseTrend();
        return withTrendAlone();
    }
    subset.trend = trend;
    const auto run = [&](double from, double to) {
        const FitProgress::Portion part(from, to);
        subset.data = data;
        LargeKriging::Result result =
            LargeKriging::run(all, subset, searchSettings(), !isNuggetWanted(), options.sizes);
        found = result.found;
        return result;
    };
    const double once = hasScatter(*all) ? 0.5 : 1.0;
    LargeKriging::Result large = run(0.0, once);
    if (isScatterNegligible(*all)) {
        auto averaged = std::make_shared<KrigingData>(*all);
        averageRows(*averaged);
        averageRows(*data);
        all = std::move(averaged);
        large = run(once, 1.0);
    }
    warnOfConflicts(areCasesMet(large));
    warnOfRaisedNugget();

    FittedKriging parts = commonParts();
    parts.processVariance = large.subset.processVariance;
    parts.nugget = found.parameters.nugget;
    parts.interpolates = large.subset.interpolates;
    parts.coefficients = large.subset.coefficients;
    parts.weights = large.subset.weights;
    if (!large.subset.weights.empty()) {
        auto correlation = std::make_shared<MaternCorrelation>(data->cases, data->inputs,
                                                               data->coordinates.data());
        correlation->setLengths(found.parameters.lengths);
        parts.correlation = std::move(correlation);
    }
    parts.neighbours = large.neighbours;
    parts.neighbourVariance = large.neighbourVariance;
    parts.corrected = {found.parameters.lengths, found.parameters.nugget};
    parts.correctedVariance = large.correctedVariance;

    KrigingFit fit{KrigingPredictor(std::move(parts)), {}, {}, {}, {}};
    reportCorrelation(fit, large.subset.processVariance, large.subset.condition,
                      large.subset.interpolates);
    reportOf().addTrend(fit, *trend, large.subset.coefficients);
    measure(fit, *all, large.measured, large.residuals, large.leaveOneOutResiduals);
    keepLeftOut(fit, *all,
                {large.measured, large.leaveOneOutResiduals, large.leaveOneOutVariances,
                 large.neighbourVariance,
                 large.neighbours ? large.neighbours->parameters().nugget : 0.0});
    warnings.push_back("There are more than " + std::to_string(options.sizes.maxExact) +
                       " distinct cases: " + large.description(scale));
    warnings.push_back(KrigingWarnings::ofSample(large.measured.size()));
    return fit;
}

bool Fitter::areCasesMet(const LargeKriging::Result& large)
{
    constexpr double slight = 1e-6; // a nugget that is there for the factorisation

    return large.neighbours ? large.neighbours->parameters().nugget <= slight
                            : large.subset.interpolates;
}

bool Fitter::isExplainedBy(const std::vector<double>& coefficients, const KrigingData& all) const
{
    std::vector<const double*> points;
    for (std::size_t k = 0; k < all.inputs; ++k) {
        points.push_back(all.coordinates.data() + k * all.cases);
    }
    std::vector<double> explained(all.cases, 0.0);
    trend->add(points, all.cases, coefficients, explained.data());
    for (std::size_t i = 0; i < all.cases; ++i) {
        const double rounding = reportOf().roundingOf(all.output[i]);
        if (!(std::sqrt(withinSquaresAtPoint[i] / replicatesAtPoint[i]) <= rounding) ||
            !(std::fabs(all.output[i] - explained[i]) <= rounding)) {
            return false;
        }
    }
    return true;
}

KrigingFit Fitter::withTrendAlone()
{
    warnOfConflicts(true);
    warnOfTrend();
    const KrigingTrend::LeastSquares leastSquares = trend->leastSquares(data->output);
    FittedKriging parts = commonParts();
    parts.coefficients = leastSquares.coefficients;
    parts.processVariance = leastSquares.variance;

    KrigingFit fit{KrigingPredictor(std::move(parts)), {}, {}, {}, {}};
    reportIndependent(fit, leastSquares.variance, data->cases);
    reportOf().addTrend(fit, *trend, leastSquares.coefficients);
    const std::vector<std::size_t> points = allPoints();
    measure(fit, *data, points, leastSquares.residuals, leastSquares.leaveOneOutResiduals);
    keepLeftOut(fit, *data,
                {points, leastSquares.leaveOneOutResiduals, leastSquares.leaveOneOutVariances,
                 leastSquares.variance, 0.0});
    warnings.push_back("The trend passes through all cases: there is nothing left to correlate.");
    return fit;
}

/** The mean of the rows, where no input varies or the output does not. */
KrigingFit Fitter::constant()
{
    const auto n = static_cast<double>(output.size());
    double squares = 0.0; // of the standardised output; in order, like all sums
    for (const double y : ascending(output)) {
        const double deviation = (y - offset) / scale;
        squares += deviation * deviation;
    }

    // One case that stands for all rows.
    data->cases = 1;
    data->terms = 1;
    data->trend = {1.0};
    data->replicates = {n};
    trend = std::make_shared<KrigingTrend>(data->cases, 0, data->coordinates, 0, 0);
    FittedKriging parts = commonParts();
    parts.coefficients = {0.0};
    parts.processVariance = squares / n;
    KrigingFit fit{KrigingPredictor(std::move(parts)), {}, {}, {}, {}};
    reportOf().addTrend(fit, *trend, {0.0});
    reportIndependent(fit, squares / n, output.size());
    fit.leftOut = KrigingLeaveOneOut::ofMean(output);
    fit.metrics.cases = output.size();
    fit.metrics.terms = 1;
    fit.metrics.rmse = scale * std::sqrt(squares / n);
    double press = 0.0;
    if (output.size() > 1) {
        // A case left out moves the mean away from it.
        const double leverage = n / (n - 1.0);
        press = squares * leverage * leverage;
        fit.metrics.press = press * scale * scale;
        fit.metrics.looRmse = scale * std::sqrt(press / n);
    }
    if (squares > 0.0) {
        fit.metrics.r2 = 0.0;
        fit.metrics.q2 = 1.0 - press / squares;
        warnings.push_back("No input varies over the cases: the prediction is the mean output.");
    } else if (output.size() > 1) {
        warnings.push_back("The output is the same in all cases: the prediction is constant.");
    } else {
        warnings.push_back("There is only one case: the prediction is constant.");
    }
    return fit;
}

/** The report where nothing is correlated: R is the identity. The variance is that of the
 *  standardised output, whose logarithm exists where the squared unit of the output overflows. */
void Fitter::reportIndependent(KrigingFit& fit, double variance, std::size_t count) const
{
    const auto n = static_cast<double>(count);
    fit.report.correlationLengths.assign(cases.inputCount(), infinity);
    fit.report.processVariance = variance * scale * scale;
    fit.report.logLikelihood =
        variance > 0.0 ? -0.5 * (n * std::log(twoPi * variance) + n) - n * std::log(scale)
                       : infinity;
}

std::vector<std::size_t> Fitter::allPoints() const
{
    std::vector<std::size_t> points(data->cases);
    std::iota(points.begin(), points.end(), std::size_t{0});
    return points;
}

KrigingFit Fitter::run()
{
    const FitProgress::Portion preparing(0.0, 1.0, "Preparing the cases");
    FitProgress::advance();
    std::vector<bool> varies(cases.inputCount(), false);
    for (const std::size_t input : cases.activeInputs()) {
        varies[input] = true;
    }
    for (std::size_t input = 0; input < varies.size(); ++input) {
        if (!varies[input] && cases.rowCount() > 1) {
            warnings.push_back(KrigingWarnings::ofConstantInput(input));
        }
    }

    standardise();
    const auto [smallest, largest] = std::minmax_element(output.begin(), output.end());
    const bool isConstant = *smallest == *largest;
    KrigingFit fit = [&] {
        if (isConstant || cases.activeInputs().empty()) {
            return constant();
        }
        mergeRows();
        if (data->cases > options.sizes.maxExact) {
            return ofManyCases();
        }
        chooseTrend();
        return isExplainedByTrend() ? withTrendAlone() : withCorrelation();
    }();
    for (std::string& verdict : KrigingTexts::verdicts(fit, noiseShare)) {
        warnings.push_back(std::move(verdict));
    }
    fit.warnings = std::move(warnings);
    FitProgress::report(1.0, "Fitted");
    return fit;
}

} // namespace

KrigingFit fitKriging(const KrigingCases& cases, const std::vector<double>& output,
                      const KrigingFitOptions& options)
{
    return Fitter(cases, output, options).run();
}
