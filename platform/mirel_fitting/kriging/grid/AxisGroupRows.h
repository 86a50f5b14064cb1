#pragma once

#include <mirel_fitting/kriging/grid/AxisGroup.h>
#include <mirel_fitting/machine/AlignedBuffer.h>

#include <cstddef>
#include <vector>

/** The rows of consecutive combinations of an axis group: per combination the correlations with all
 *  cases, then the values of the trend polynomials. */
class AxisGroupRows
{
public:
    /** @param maxRows of one fill(). Group and correlation are borrowed. */
    AxisGroupRows(const AxisGroup& group, const MaternCorrelation& correlation,
                  std::size_t maxRows);

    /** Computes the rows of `count` combinations. The first trend value of a combination that is
     * not finite is NaN. */
    void fill(std::size_t firstCombination, std::size_t count);

    const double* data() const { return buffer.data(); }
    std::size_t stride() const { return rowStride; }
    std::size_t columns() const { return cases + group.trend.size(); }

private:
    void computePassed(std::size_t axis, std::size_t count);
    const double* correlationsOf(std::size_t axis, std::size_t combination) const;
    void multiplySlowerAxes(std::size_t combination);

    /** Correlations of an axis: of all its values, or of those in the present combinations. */
    struct Table
    {
        AlignedBuffer rows;
        bool isWhole = false;
    };

    const AxisGroup& group;
    const MaternCorrelation& correlation;
    std::size_t cases;
    std::size_t tableStride;
    std::size_t rowStride;
    AlignedBuffer buffer;
    std::vector<Table> tables; // one per axis
    AlignedBuffer shared;      // product of all axes but the fastest
    std::size_t first = 0;
};
