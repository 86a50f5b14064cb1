#include <mirel_fitting/kriging/fit/KrigingFitInput.h>

#include <mirel_fitting/kriging/correlation/NuggetBounds.h>
#include <mirel_fitting/kriging/report/KrigingWarnings.h>

#include <algorithm>
#include <cstddef>
#include <utility>

KrigingSearchSettings KrigingFitInput::searchSettings() const
{
    // So short a length makes every case uncorrelated; in shorter units coordinates would overflow.
    constexpr double shortest = 1e-100;

    KrigingSearchSettings settings;
    settings.tolerance = options.tolerance;
    settings.initialLength = options.initialCorrelationLength;
    settings.requestedNugget = options.nugget;
    settings.isNuggetFixed = options.isNuggetFixed();
    settings.findsSecondOptimum = options.findsSecondOptimum;
    const std::size_t inputs = cases.activeInputs().size();
    for (std::size_t k = 0; k < inputs && !options.correlationLengths.empty(); ++k) {
        const double length = options.correlationLengths[cases.activeInputs()[k]];
        settings.fixedLengths.push_back(std::max(length / cases.range()[k], shortest));
    }
    return settings;
}

bool KrigingFitInput::isNuggetNoise() const
{
    return options.nugget > NuggetBounds::sound;
}

std::shared_ptr<const KrigingTrend> KrigingFitInput::addTrend(KrigingData& data) const
{
    const std::size_t lengths = options.correlationLengths.empty() ? data.inputs : 0;
    const std::size_t variance = 1;
    return KrigingTrend::of(data, options.trendOrder, lengths + variance);
}

void KrigingFitInput::warnOfTrend(const KrigingTrend& trend, std::size_t distinct,
                                  KrigingFit& fit) const
{
    if (trend.order() < options.trendOrder) {
        fit.addNote(KrigingWarnings::ofTooFewCases(options.trendOrder, trend.order(), distinct));
    }
    for (const QuadraticBasis::Term& term : trend.droppedTerms()) {
        fit.droppedTerms.push_back(term.renumbered(cases.activeInputs()));
    }
}

FittedKriging KrigingFitInput::emptyModel(std::shared_ptr<const KrigingTrend> trend,
                                          std::shared_ptr<const KrigingData> data) const
{
    FittedKriging model;
    model.inputs = cases.activeInputs();
    model.minimum = cases.minimum();
    model.range = cases.range();
    model.trend = std::move(trend);
    model.offset = scale.offset;
    model.scale = scale.scale;
    model.data = std::move(data);
    return model;
}
