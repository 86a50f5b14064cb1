#pragma once

#include <mirel_fitting/machine/InstructionSet.h>

#include <cstddef>

/**
 * The inner loops of Kriging predictions: product Matern 5/2 correlations between a block of
 * points, several to a register, and some cases, one after the other. All coordinates are scaled:
 * by sqrt(5) / length.
 *
 * A correlation has a relative error of a few units in the last place: at most 3, 1.5 per input,
 * and 0.15 per unit of the summed distance, 0.65 where operations are not fused, beside what the
 * rounding of the scaled coordinates makes. Of each pair of coordinates at most `farthest` apart
 * counts: further away the correlation is 0 to every digit.
 */
struct MaternKernels
{
    /** Arrays of points are aligned to this many doubles, and padded with any finite numbers. */
    static constexpr std::size_t lanes = 8;
    static constexpr double farthest = 1000.0;
    static constexpr double nearSum = 700.0;

    /** How far apart a point and a case can be; what is known saves operations. */
    enum class Reach
    {
        Near,     ///< the distances by all inputs sum up to `nearSum` at most
        Far,      ///< 2 * `farthest` at most in each input
        Unlimited ///< any finite distance
    };

    struct Points
    {
        const double* coordinates; ///< by columns, one per input; aligned
        std::size_t stride;        ///< from column to column, a multiple of `lanes`
        std::size_t count;         ///< a multiple of `lanes`
    };
    struct Cases
    {
        const double* coordinates; ///< case by case
        std::size_t inputs;
        std::size_t count;
        Reach reach;
    };

    /** sums[i] += sum over j of weights[j] c(point i, case j). `sums` is aligned. */
    void (*addWeightedSums)(const Points& points, const Cases& cases, const double* weights,
                            double* sums);

    /** result[j * stride + i] = c(point i, case j); `result` aligned, stride a multiple of lanes.
     */
    void (*correlate)(const Points& points, const Cases& cases, double* result, std::size_t stride);

    /**
     * gradients[k * stride + i] += sum over j of weights[j] dc(point i, case j) / dx_ik, where x_ik
     * is the scaled coordinate; `gradients` aligned, stride a multiple of lanes.
     */
    void (*addWeightedGradients)(const Points& points, const Cases& cases, const double* weights,
                                 double* gradients, std::size_t stride);

    /** A matrix product that addProducts() sums: `lanes` rows of the left matrix, by columns. */
    struct Product
    {
        const double* left; ///< aligned
        std::size_t leftStride;
        const double* right; ///< by columns too
        std::size_t rightStride;
        std::size_t count; ///< columns of the left, rows of the right matrix
    };

    /**
     * result[i * stride + r] = start[i * startStride + r] + sum over the products, over k, of
     * left[k * leftStride + r] * right[i * rightStride + k], for r < lanes and i < columns. Each
     * column comes out the same whatever others there are. `start` and `result` are aligned, and
     * may be the same; all strides but those of the right matrices are multiples of `lanes`.
     */
    void (*addProducts)(const Product* products, std::size_t productCount, const double* start,
                        std::size_t startStride, std::size_t columns, double* result,
                        std::size_t stride);

    /** Those of instructionSet(). */
    static const MaternKernels& best();
};

// One per source file, each compiled for its instruction set.
extern const MaternKernels maternKernelsBaseline;
#ifdef SURROGATE_X86_KERNELS
extern const MaternKernels maternKernelsAvx2;
extern const MaternKernels maternKernelsAvx512;
#endif
