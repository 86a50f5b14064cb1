#pragma once

#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/machine/SimdLanes.h>

#include <cstddef>
#include <vector>

/**
 * Sums over n cases along one axis,
 *
 *   y_v = q_0 + q_1 b_v + a_v + sum over the cases j of w_j c(x_v, z_j),   c the Matern 5/2
 *
 * for many rows of weights w at the same F values x: in O(n + F) operations per row instead of
 * O(n F). To one side of a case the correlation is a polynomial of second degree times an
 * exponential, so that all cases left of a point act through three moments, wherever the point is:
 * with t the distance of a case from an anchor and u that of the point beyond it,
 *
 *   c = exp(-u) [(1 + u + u^2 / 3) m_0 + (1 + 2 u / 3) m_1 + m_2 / 3],   m_q = t^q exp(-t).
 *
 * No term is negative and anchors lie between the cases and the point: nothing cancels that does
 * not cancel in the sum itself, and nothing can overflow. The values are cut into blocks with an
 * anchor at each end. Moments are carried from anchor to anchor; the cases inside of a block are
 * summed one by one. All is arranged as products of small matrices.
 *
 * Langrene, Warin: Fast and stable multivariate kernel density estimation by fast sum updating,
 * J. Comput. Graph. Stat. 28 (2019); Hartikainen, Sarkka: Kalman filtering and smoothing solutions
 * to temporal Gaussian process regression models, MLSP 2010.
 */
class AxisSums
{
public:
    /** Values are computed in panels of so many. */
    static constexpr std::size_t panelSize = laneCount;

    /** All numbers finite, cases and values ascending, in units of length / sqrt(5); at least one
     *  value. */
    struct Axis
    {
        std::vector<double> cases;
        std::vector<double> values;
        std::vector<double> offsets; ///< a_v
        std::vector<double> slopes;  ///< b_v; none: 0
    };
    explicit AxisSums(Axis axis);

    /** Multiplications per row of weights for that many cases and values, in units of eight; an
     *  estimate. */
    static double costPerRow(std::size_t cases, std::size_t values);

    /** Panels of values, the last one filled up. */
    std::size_t panels() const { return panelCount; }

    /** Numbers per row that sumMoments() writes; a multiple of laneCount. */
    std::size_t stateSize() const { return (blocks.size() + 3) * laneCount; }

    /** q_0 and q_1 of a row of weights. */
    struct Trend
    {
        double constant;
        double slope;
    };

    /**
     * Sums the moments of some rows of weights about each anchor.
     * @param weights of row i: from weights + i * stride on.
     * @param states  aligned, stateSize() numbers per row.
     */
    void sumMoments(const double* weights, std::size_t stride, const std::vector<Trend>& trends,
                    double* states) const;

    /** The factors of weights and moments at the values of some consecutive panels. */
    class Table
    {
    public:
        Table(const AxisSums& sums, std::size_t firstPanel, std::size_t panelCount);

    private:
        friend class AxisSums;

        struct Stretch // panels within one block
        {
            std::size_t block;
            std::size_t firstPanel;
            std::size_t panels;
            std::size_t position; // in the buffer
        };
        std::vector<Stretch> stretches;
        AlignedBuffer buffer;
    };

    /** An upper limit of the numbers that a table of one panel holds. */
    std::size_t largestPanelTable() const;

    /**
     * result[i * resultStride + v] = y_v of row i, for all values v of the panels of the table, the
     * first of which is value 0 here.
     * @param result aligned, its stride a multiple of laneCount.
     */
    void evaluate(const Table& table, const double* weights, std::size_t stride,
                  const double* states, std::size_t rows, double* result,
                  std::size_t resultStride) const;

private:
    struct Block
    {
        std::size_t firstPanel;
        std::size_t lastPanel; // behind the last one
        std::size_t firstCase; // the cases between its anchors
        std::size_t lastCase;
    };

    void placeBlocks();
    void computeMoments();
    void computeShifts();
    std::size_t tableSize(const Block& block, std::size_t panels) const;
    void tabulate(const Block& block, std::size_t firstPanel, std::size_t panels,
                  double* table) const;

    Axis axis;
    std::size_t panelCount;
    AlignedBuffer values;  // filled up with the last one
    AlignedBuffer offsets; // filled up
    std::vector<Block> blocks;
    std::vector<double> anchors; // of block b: b and b + 1
    // Location h lies between the anchors h - 1 and h, the first and the last one outside of all.
    // Its cases are those from bounds[h] to before bounds[h + 1]. State h + 1 of a row of weights
    // holds the moments about anchor h of all cases on its left, those about anchor h - 1 of all
    // cases on its right, and the trend.
    std::vector<std::size_t> bounds;
    AlignedBuffer moments; // per case: those of a weight of 1 in the state of its location
    AlignedBuffer shifts;  // per location h: from the left part of state h, and right of h + 2
};
