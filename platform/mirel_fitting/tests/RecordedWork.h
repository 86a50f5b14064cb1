#pragma once

#include <mirel_fitting/FitProgress.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

/** A portion of a fit that counts what FitProgress::advance() reports inside it. */
class RecordedWork
{
public:
    /**
     * @param unit       of work(); at most a few of them can be counted.
     * @param maxReports the report with this number throws std::runtime_error.
     */
    explicit RecordedWork(double unit = 1.0, int maxReports = std::numeric_limits<int>::max())
        : progress([this, maxReports](double fraction, const std::string&) {
              lastFraction = fraction;
              if (++count == maxReports) {
                  throw std::runtime_error("enough");
              }
              return true;
          }),
          portion(0.0, 1.0, "Working", unit)
    {}

    int reports() const { return count; }

    /** So far, from the fraction that is reported of it. */
    double work() const { return -0.5 * std::log(1.0 - lastFraction / 0.98); }

private:
    int count = 0;
    double lastFraction = 0.0;
    FitProgress progress;
    FitProgress::Portion portion;
};
