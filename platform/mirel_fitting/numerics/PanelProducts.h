#pragma once

#include <mirel_fitting/machine/SimdLanes.h>

#include <cstddef>

/** A product of a panel, a matrix of laneCount rows, with a matrix. Both are stored by columns. */
struct PanelProduct
{
    const double* left;
    std::size_t leftStride;
    const double* right;
    std::size_t rightStride;
    std::size_t count; ///< columns of the left, rows of the right matrix
};

/**
 * result[i * stride + r] = start[i * startStride + r] + sum over the products, over k, of
 * left[k * leftStride + r] * right[i * rightStride + k], for r < laneCount and i < columns. The
 * bits of a column do not depend on the others. `start` and `result` may be the same. Faster
 * than BLAS, which is made for larger matrices.
 */
void addPanelProducts(const PanelProduct* products, std::size_t productCount, const double* start,
                      std::size_t startStride, std::size_t columns, double* result,
                      std::size_t stride);
