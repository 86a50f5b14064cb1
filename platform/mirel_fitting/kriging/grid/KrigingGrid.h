#pragma once

#include <mirel_fitting/grid/ProductGrid.h>
#include <mirel_fitting/kriging/grid/GridMethod.h>
#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>

#include <vector>

/**
 * Predictions at points that are split into grids. The correlation is a product over the inputs, so
 * a grid needs far fewer correlations than it has points. A prediction differs from
 * KrigingPredictor::predict() by rounding: at most 4 eps times the sum of |w_j c_j|, and 1e-12 of
 * the output's standard deviation. NaN where a coordinate is not finite.
 *
 * As many threads work as setThreadCount() allows, with the same bits for any number of them.
 *
 * @param columns one per input of the model's cases.
 * @param grids   what ProductGrid::split() made of the columns.
 * @param result  one number per row of the columns.
 */
void predictGrids(const KrigingPredictor& predictor, const std::vector<double*>& columns,
                  const std::vector<ProductGrid>& grids, double* result);

/** One of the grids by one method, whatever it costs; `method` has to be possible. */
void predictGrid(const KrigingPredictor& predictor, const std::vector<double*>& columns,
                 const ProductGrid& grid, const GridMethod& method, double* result);
