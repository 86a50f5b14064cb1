#pragma once

#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/kriging/report/KrigingFit.h>

#include <vector>

/**
 * Fits one output.
 * @param output one finite value per row of the cases.
 * @throw SurrogateModelInterface::Error if the fit is cancelled or impossible.
 */
KrigingFit fitKriging(const KrigingCases& cases, const std::vector<double>& output,
                      const KrigingFitOptions& options);
