#include <mirel_fitting/kriging/search/KrigingOptima.h>

#include <mirel_fitting/kriging/search/SearchPolicy.h>

#include <algorithm>
#include <cmath>
#include <utility>

void KrigingOptima::add(Optimum reached, BoundedObjective& likelihood)
{
    const auto same = std::find_if(optima.begin(), optima.end(), [&](const Optimum& optimum) {
        return areSame(reached, optimum, likelihood);
    });
    if (same == optima.end()) {
        optima.push_back(std::move(reached));
    } else {
        *same = reached.value > same->value ? std::move(reached) : *same;
    }
    // Stable: of equals the earlier one leads, run after run.
    std::stable_sort(optima.begin(), optima.end(),
                     [](const Optimum& a, const Optimum& b) { return a.value > b.value; });
}

/** Close to each other, or ends of one flat ridge, where searches stop anywhere. */
bool KrigingOptima::areSame(const Optimum& a, const Optimum& b, BoundedObjective& likelihood) const
{
    if (variables.areClose(a.point, b.point)) {
        return true;
    }
    if (std::fabs(a.value - b.value) > SearchPolicy::ridgeGap) {
        return false;
    }
    std::vector<double> between;
    for (std::size_t k = 0; k < a.point.size(); ++k) {
        between.push_back(0.5 * (a.point[k] + b.point[k]));
    }
    return likelihood.value(between) >= std::min(a.value, b.value) - SearchPolicy::ridgeDip;
}

bool KrigingOptima::isBetterNear(const std::vector<double>& point, double value) const
{
    return std::any_of(optima.begin(), optima.end(), [&](const Optimum& optimum) {
        return optimum.value >= value &&
               std::equal(point.begin(), point.end(), optimum.point.begin(),
                          [&](double a, double b) {
                              return std::fabs(a - b) <= SearchPolicy::sameLogarithm;
                          });
    });
}

void KrigingOptima::replace(const std::vector<Optimum>& reached, BoundedObjective& likelihood)
{
    optima.clear();
    for (const Optimum& optimum : reached) {
        add(optimum, likelihood);
    }
}

void KrigingOptima::shorten(std::size_t count)
{
    optima.resize(std::min(optima.size(), count));
}
