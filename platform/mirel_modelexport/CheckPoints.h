#pragma once

#include <mirel_modelexport/ExportedModel.h>

#include <cstddef>
#include <vector>

/**
 * Points by which an exported file finds out whether it still computes what the model does.
 *
 * What may differ is rounding: an output may be off by a few eps of the sum of the magnitudes that
 * it is added up from, and a Kriging model by 1e-12 of its output's standard deviation.
 */
struct CheckPoints
{
    static constexpr std::size_t count = 10;

    /** The same for every model with these ranges, inside of them, none at their ends. */
    explicit CheckPoints(const ExportedModel& model);

    std::vector<std::vector<double>> points;     ///< [point][input]
    std::vector<std::vector<double>> values;     ///< [output][point]
    std::vector<std::vector<double>> tolerances; ///< [output][point]
};

/** One output at points, [point][input]. */
std::vector<double> predictionsAt(const ExportedModel& model, std::size_t output,
                                  const std::vector<std::vector<double>>& points);

/** How far a prediction at the point, or of its transform, may be off by rounding; see CheckPoints.
 */
double roundingTolerance(const PredictorDescription& predictor, const std::vector<double>& point);

/** How far the output at the point may be off because inputs and origins are read with more digits
 *  than a double has, or fewer: by a unit in the last place of each. */
double inputRounding(const ExportedModel& model, std::size_t output,
                     const std::vector<double>& point);

/** sqrt(5) / length of each coordinate: by that coordinates are scaled before they are compared. */
std::vector<double> correlationScales(const PredictorDescription& predictor);

/** The scaled coordinates of the cases, case by case. */
std::vector<double> scaledCases(const PredictorDescription& predictor);
