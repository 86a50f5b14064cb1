#include <mirel_fitting/CalibrationReport.h>

#include <algorithm>

void CalibrationReport::addCoverage(const std::vector<double>& magnitudes,
                                    const std::function<double(double)>& quantile)
{
    cases = magnitudes.size();
    if (cases == 0) {
        return;
    }
    for (const double level : {0.5, 0.8, 0.95, 0.99}) {
        const double limit = quantile(level);
        const auto inside = std::count_if(magnitudes.begin(), magnitudes.end(),
                                          [limit](double magnitude) { return magnitude <= limit; });
        coverage.push_back({level, static_cast<double>(inside) / static_cast<double>(cases)});
    }
}
