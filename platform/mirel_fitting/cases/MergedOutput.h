#pragma once

#include <mirel_fitting/cases/KrigingCases.h>

#include <cstddef>
#include <vector>

/**
 * One output, the rows with the same inputs merged: for each point the mean of its rows, their
 * number, and their sum of squares about the mean, from which noise is estimated.
 *
 * A row that repeats another one, output included, counts once, unless rows at some point differ:
 * then all rows are replicates, and those that agree are evidence about the noise, too.
 */
class MergedOutput
{
public:
    /** Calls FitProgress::advance() every 65536 points. @param output one value per row. */
    MergedOutput(const KrigingCases& cases, const std::vector<double>& output);

    std::vector<double> means;         ///< one per point
    std::vector<double> replicates;    ///< one per point: number of rows that count
    std::vector<double> withinSquares; ///< one per point: sum of squares about the mean
    std::size_t copies = 0;            ///< rows that repeat another one, merged or counted
    std::size_t conflicts = 0;         ///< points whose rows differ

private:
    void add(const std::vector<double>& ascending);
};
