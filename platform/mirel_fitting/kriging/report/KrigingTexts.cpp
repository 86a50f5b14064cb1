#include <mirel_fitting/kriging/report/KrigingTexts.h>

#include <mirel_fitting/cases/LeftOutCasesWarning.h>
#include <mirel_fitting/kriging/report/KrigingWarnings.h>
#include <mirel_fitting/numerics/NumberText.h>

#include <algorithm>
#include <cmath>

namespace {

const char* orderName(int order)
{
    switch (order) {
    case 0:
        return "constant";
    case 1:
        return "linear";
    default:
        return "full quadratic";
    }
}

std::string line(const std::string& name, double value)
{
    return std::isnan(value) ? std::string() : name + ": " + NumberText::rounded(value) + "\n";
}

std::string otherLengthsText(const KrigingReport& report)
{
    constexpr int digits = 3;
    constexpr double noticeable = 0.005;
    const double lower = report.logLikelihood - report.secondLogLikelihood;
    return "Other correlation lengths are " +
           (lower < noticeable ? "as likely"
                               : "nearly as likely (log-likelihood lower by " +
                                     NumberText::rounded(lower, digits) + ")") +
           ": more cases would decide between two different models.";
}

std::string worstCasesText(const KrigingReport& report)
{
    constexpr int minDigits = 8;

    std::string text;
    for (const KrigingReport::LeftOutCase& one : report.worstCases) {
        const int digits = one.digits(minDigits);
        text += (text.empty() ? "Worst when left out: case " : ", case ") +
                std::to_string(one.row + 1) + " (" + NumberText::rounded(one.predicted, digits) +
                " instead of " + NumberText::rounded(one.output, digits) + ")";
    }
    return text.empty() ? text : text + "\n";
}

bool isMostlyNoise(const KrigingFit& fit)
{
    constexpr double mostly = 0.5;
    return fit.noiseShare > mostly;
}

/** What the bounds say at which lengths ended: one sentence for all inputs alike. */
void addLengthWarnings(const KrigingFit& fit, const InputNames& names,
                       std::vector<std::string>& sentences)
{
    std::vector<std::size_t> withoutInfluence;
    std::vector<std::size_t> onlyInTrend;
    std::vector<std::size_t> fast;
    for (std::size_t k = 0; k < fit.report.lengthBounds.size(); ++k) {
        if (fit.report.lengthBounds[k] == KrigingReport::Bound::Upper) {
            (fit.report.hasNoInfluence(k) ? withoutInfluence : onlyInTrend).push_back(k);
        }
        // Lengths this short mean noise.
        if (fit.report.lengthBounds[k] == KrigingReport::Bound::Lower && !isMostlyNoise(fit)) {
            fast.push_back(k);
        }
    }
    if (!withoutInfluence.empty()) {
        sentences.push_back("The cases show no influence of " + names.list(withoutInfluence) + ".");
    }
    if (!onlyInTrend.empty()) {
        sentences.push_back("The cases show no influence of " + names.list(onlyInTrend) +
                            " beyond the trend.");
    }
    if (!fast.empty()) {
        sentences.push_back("The output changes along " + names.list(fast) +
                            " faster than the cases can show: " +
                            (fast.size() == 1 ? "its correlation length is at its lower bound."
                                              : "the correlation lengths are at their lower "
                                                "bounds."));
    }
}

} // namespace

std::string KrigingTexts::lengths(const KrigingReport& report)
{
    std::string text;
    for (std::size_t k = 0; k < report.correlationLengths.size(); ++k) {
        text += "Correlation length of V" + std::to_string(k + 1) + ": " +
                NumberText::rounded(report.correlationLengths[k]) + report.lengthBoundText(k) +
                "\n";
    }
    return text;
}

std::vector<std::string> KrigingTexts::warnings(const KrigingFit& fit, const InputNames& names)
{
    std::vector<std::string> sentences;
    if (!fit.constantInputs.empty()) {
        sentences.push_back(KrigingWarnings::ofConstantInputs(fit.constantInputs, names));
    }
    if (!fit.droppedTerms.empty()) {
        sentences.push_back(KrigingWarnings::ofDroppedTerms(fit.droppedTerms, names));
    }
    sentences.insert(sentences.end(), fit.warnings.begin(), fit.warnings.end());
    addLengthWarnings(fit, names, sentences);
    return sentences;
}

std::string KrigingTexts::quality(const KrigingFit& fit)
{
    const KrigingReport& report = fit.report;
    std::string text = "Cases: " + std::to_string(fit.metrics.cases) + "\n";
    text += line("RMSE", fit.metrics.rmse);
    text += line("Leave-one-out RMSE", fit.metrics.looRmse);
    text += line("Q2", fit.metrics.q2);
    text += worstCasesText(report);
    text += "Criterion: " + report.criterionText() + "\n";
    text += line("Log-likelihood", report.logLikelihood);
    text += line("Second-best log-likelihood", report.secondLogLikelihood);
    text += line("Process variance", report.processVariance);
    text += "Nugget (relative to the process variance): " + NumberText::rounded(report.nugget) +
            KrigingReport::boundText(report.nuggetBound) + "\n";
    if (report.noiseDeviation > 0.0) {
        text += line("Noise (standard deviation)", report.noiseDeviation);
    }
    text += line("Condition of the correlation matrix", report.condition);
    text += std::string("Trend: ") + orderName(report.trendOrder) + ", " + fit.trendText + "\n";
    text += lengths(report);
    for (const std::string& warning : warnings(fit)) {
        text += "Warning: " + warning + "\n";
    }
    return text;
}

std::vector<std::string> KrigingTexts::verdicts(const KrigingFit& fit)
{
    // A likelihood ratio of 7 is no evidence for either model.
    constexpr double close = 2.0;

    const KrigingReport& report = fit.report;
    std::vector<std::string> result;
    const bool isMoreThanTheMean = fit.metrics.terms > 1 || !std::isnan(report.condition);
    if (isMoreThanTheMean && fit.metrics.r2 < flatShare) {
        result.push_back("The model is flat: it explains " +
                         NumberText::percent(std::max(fit.metrics.r2, 0.0)) + " of the variance.");
    }
    if (isMostlyNoise(fit)) {
        result.push_back("Noise dominates: " + NumberText::percent(std::min(fit.noiseShare, 1.0)) +
                         " of the variance is taken for noise.");
    }
    if (report.nuggetBound == KrigingReport::Bound::Upper) {
        result.push_back("The nugget is at its upper bound, " +
                         NumberText::rounded(report.nugget, 4) +
                         " times the process variance: beyond the trend the cases show no "
                         "correlation.");
    }
    // For noise, or uncorrelated cases, all lengths are equally likely.
    const bool isAModel = !isMostlyNoise(fit) && fit.metrics.q2 > 0.0;
    if (isAModel && report.logLikelihood - report.secondLogLikelihood < close) {
        result.push_back(otherLengthsText(report));
    }
    if (std::isnan(fit.metrics.looRmse) && fit.metrics.cases > 1) {
        result.push_back("A case alone determines a term of the trend: there are no "
                         "leave-one-out figures, since leaving it out leaves no such fit.");
    }
    // A model that interpolates its cases has R2 = 1, but may be flat between them.
    const auto warning = leftOutCasesWarning(fit.metrics.q2);
    if (warning && isMoreThanTheMean && (fit.metrics.q2 <= 0.0 || fit.metrics.r2 >= flatShare)) {
        result.push_back(*warning);
    }
    return result;
}
