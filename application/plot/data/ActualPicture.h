#pragma once

#include <string>
#include <vector>

/** Predicted against actual values of one output, with the diagonal on which they are equal. */
struct ActualPicture
{
    std::string title;
    std::string outputName;
    std::vector<double> actual;    ///< finite, in the unit of the output
    std::vector<double> predicted; ///< as many
    std::string caption;           ///< where the predictions come from; empty for none
};
