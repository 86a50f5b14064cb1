#include <mirel_fitting/kriging/search/KrigingOptima.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

void KrigingOptima::sort(std::vector<Optimum>& optima)
{
    // Stable: of equals the earlier one leads, run after run.
    std::stable_sort(optima.begin(), optima.end(),
                     [](const Optimum& a, const Optimum& b) { return a.value > b.value; });
}

double KrigingOptima::highestValue() const
{
    double result = -std::numeric_limits<double>::infinity();
    for (const Optimum& optimum : optima) {
        result = std::max(result, optimum.value);
    }
    return result;
}

void KrigingOptima::add(Optimum reached, BoundedObjective& likelihood)
{
    for (Optimum& optimum : optima) {
        if (variables.areClose(reached.point, optimum.point) ||
            areOnOneRidge(reached, optimum, likelihood)) {
            reached.meetings = optimum.meetings + 1;
            optimum = reached.value > optimum.value ? reached : optimum;
            optimum.meetings = reached.meetings;
            return;
        }
    }
    optima.push_back(std::move(reached));
}

/**
 * Whether the likelihood hardly dips on the way from one point to the other: then they are ends of
 * one flat ridge, where searches stop anywhere, and no different models.
 */
bool KrigingOptima::areOnOneRidge(const Optimum& a, const Optimum& b,
                                  BoundedObjective& likelihood) const
{
    constexpr double littleDip = 0.25;
    constexpr double alike = 2.0;

    const double lower = std::min(a.value, b.value);
    if (std::fabs(a.value - b.value) > alike) {
        return false;
    }
    for (const double share : {0.5, 0.25, 0.75}) {
        std::vector<double> between;
        for (std::size_t k = 0; k < a.point.size(); ++k) {
            between.push_back((1.0 - share) * a.point[k] + share * b.point[k]);
        }
        if (!(likelihood.value(between) >= lower - littleDip)) {
            return false;
        }
    }
    return true;
}

void KrigingOptima::shortlist(std::size_t cases)
{
    // Whoever is farther behind than this, for each case, stays behind.
    constexpr double closeEnough = 0.03;
    constexpr double noisy = 1e-3;

    const double least = optima.front().value - 1.0 - closeEnough * static_cast<double>(cases);
    std::vector<Optimum> kept;
    bool areAlike = true;
    for (const Optimum& optimum : optima) {
        const bool isLike =
            (optimum.noiseVariance > noisy) == (optima.front().noiseVariance > noisy);
        if (optimum.value >= least && (kept.size() < 2 || (areAlike && !isLike))) {
            kept.push_back(optimum);
            areAlike = areAlike && isLike;
        }
    }
    optima = std::move(kept);
}

void KrigingOptima::dropCopiesOfTheBest()
{
    optima.erase(std::remove_if(optima.begin() + 1, optima.end(),
                                [&](const Optimum& optimum) {
                                    return variables.areClose(optimum.point, optima[0].point);
                                }),
                 optima.end());
}

void KrigingOptima::dropEndsOfTheRidge(BoundedObjective& likelihood)
{
    while (optima.size() > 1) {
        Optimum second = optima[1];
        if (!second.isSearched) {
            second.value = std::min(second.value, likelihood.value(second.point));
        }
        if (!areOnOneRidge(optima[0], second, likelihood)) {
            return;
        }
        optima.erase(optima.begin() + 1);
    }
}
