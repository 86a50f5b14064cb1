#pragma once

#include <string>
#include <vector>

/** Residuals of one output, actual minus predicted, against the predictions, with the line of 0. */
struct ResidualPicture
{
    std::string title;
    std::string outputName;
    std::vector<double> predicted; ///< finite, in the unit of the output
    std::vector<double> residuals; ///< as many
    std::string caption;           ///< where the predictions come from; empty for none
};
