#pragma once

#include <mirel_fitting/cases/KrigingCases.h>

#include <cstddef>
#include <vector>

/**
 * One output, the rows with the same inputs merged: for each point the mean of its rows, their
 * number, and their scatter, which is evidence for noise.
 *
 * Rows that repeat another one in its output too say nothing new and count once, unless rows at
 * some point differ: then all are measurements, of which those that agree tell of the noise, too.
 */
class MergedOutput
{
public:
    /** With FitProgress::advance() now and then. @param output one value per row. */
    MergedOutput(const KrigingCases& cases, const std::vector<double>& output);

    std::vector<double> means;   ///< one per point
    std::vector<double> rows;    ///< one per point: how many are counted
    std::vector<double> scatter; ///< one per point: sum of squares about the mean
    std::size_t copies = 0;      ///< rows that repeat another one, merged or counted
    std::size_t conflicts = 0;   ///< points whose rows differ

private:
    void add(const std::vector<double>& ascending);
};
