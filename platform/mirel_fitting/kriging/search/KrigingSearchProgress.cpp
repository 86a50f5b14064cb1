#include <mirel_fitting/kriging/search/KrigingSearchProgress.h>

#include <mirel_fitting/FitProgress.h>

#include <algorithm>
#include <cmath>

KrigingSearchProgress::KrigingSearchProgress(std::size_t casesToCompete, const KrigingData& data,
                                             const KrigingSearch::Settings& settings)
{
    const auto n = static_cast<double>(data.cases);
    if (settings.mostSteps) {
        expectedWork = (0.5 + 0.5 * *settings.mostSteps) * n * n * n;
        return;
    }
    const auto m = static_cast<double>(std::min(data.cases, casesToCompete));
    expectedWork = 50.0 * m * m * m + 6.0 * n * n * n;
}

void KrigingSearchProgress::add(double multiplications)
{
    done += multiplications;
    // Nobody knows how many steps are left: the fraction comes close to 1 without reaching it.
    constexpr double mostOfIt = 0.98;
    FitProgress::report(mostOfIt * (1.0 - std::exp(-2.0 * done / expectedWork)),
                        "Searching for the correlation lengths");
}
