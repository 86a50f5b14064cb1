#pragma once

#include <mirel_modelexport/ExportedModel.h>

#include <string>
#include <vector>

/* What the files of other languages write alike: the terms of a polynomial, with the factors x[0],
 * x[1], ..., and the output of its transform. */

/** Each term as a product, "2.0 * x[0] * x[1]", in the order of the description. */
std::vector<std::string> productTerms(const PredictorDescription& predictor);

/** The terms grouped by their first factor, "x[0] * (1.5 + 2.0 * x[1])", without the constant: the
 *  order in which the model itself adds. */
std::vector<std::string> nestedTerms(const PredictorDescription& predictor);

/**
 * The output whose transform is the expression.
 * @param exponential how the exponential of % is written.
 * @param square      how the square of % is written, or 0 where % is negative.
 */
std::string outputOf(OutputTransform transform, const std::string& expression,
                     std::string exponential, std::string square);

/** Whether any term has a factor, so that the coordinates are needed for the polynomial. */
bool hasFactors(const PredictorDescription& predictor);

/** Whether the coordinates are needed for a prediction. */
bool needsCoordinates(const PredictorDescription& predictor);

/** Whether any output is predicted by correlations with the cases. */
bool hasCorrelation(const ExportedModel& model);

bool hasTransform(const ExportedModel& model, OutputTransform transform);
