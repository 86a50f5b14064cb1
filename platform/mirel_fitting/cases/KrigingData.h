#pragma once

#include <cstddef>
#include <vector>

/**
 * What a likelihood is computed from: distinct cases with scaled inputs and standardised output.
 * A case may stand for several rows with the same inputs and different outputs; its output is then
 * their mean.
 */
struct KrigingData
{
    std::size_t cases = 0;
    std::size_t inputs = 0;
    std::size_t terms = 0;
    std::vector<double> coordinates; ///< by columns, cases x inputs, each input over [0, 1]
    std::vector<double> trend;       ///< by columns, cases x terms, linearly independent
    std::vector<double> output;      ///< one per case
    std::vector<double> rows;        ///< one per case: how many rows it stands for
    std::vector<double> scatter;     ///< one per case: sum of squares of its rows about their mean

    /** The cases of these indices, in this order. */
    KrigingData subset(const std::vector<std::size_t>& indices) const;
};
