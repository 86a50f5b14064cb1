#pragma once

#include <cstddef>
#include <vector>

/**
 * The data of a likelihood: distinct cases with scaled inputs and standardised output. They are the
 * points of KrigingCases, in its order; the cases of the user's table are called rows here. A case
 * may stand for replicates, rows with the same inputs and different outputs; its output is their
 * mean.
 */
struct KrigingData
{
    std::size_t cases = 0;
    std::size_t inputs = 0;
    std::size_t terms = 0;
    std::vector<double> coordinates; ///< by columns, cases x inputs, each input over [0, 1]
    std::vector<double> trend;       ///< by columns, cases x terms, linearly independent
    std::vector<double> output;      ///< one per case
    std::vector<double> replicates;  ///< one per case: the number of its replicates, at least 1
    /** One per case: sum of squares of its replicates about their mean. */
    std::vector<double> withinSquares;

    /** One pointer to the coordinates of each input, from a case on; valid while `coordinates` is
     *  unchanged. */
    std::vector<const double*> columns(std::size_t firstCase = 0) const;

    /** Number of rows that the cases stand for. */
    double rowCount() const;

    /** Whether some replicates differ. */
    bool hasPureError() const;

    /** The mean of replicates becomes a single case like any other. */
    void averageReplicates();

    /** Drops trend terms that are linear combinations of earlier ones at these cases. */
    void dropDependentTerms();

    /** The cases of these indices, in this order. */
    KrigingData subset(const std::vector<std::size_t>& indices) const;
};
