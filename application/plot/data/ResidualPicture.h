#pragma once

#include <plot/data/CaseMark.h>

#include <string>
#include <vector>

/** Residuals of one output, actual minus predicted, against the predictions, with the line of 0. */
struct ResidualPicture
{
    std::string title;
    std::string outputName;
    std::string unit;              ///< of the output; empty if it is not known
    std::vector<double> predicted; ///< finite, in the unit of the output
    std::vector<double> residuals; ///< as many
    std::vector<CaseMark> worst;   ///< the largest residuals, the worst first
    /** Two standard deviations of the residuals, drawn at both sides; 0 for none. */
    double limit = 0.0;
    bool isLogarithmic = false; ///< the axis of the predictions, where these allow it
    std::string caption;        ///< where the predictions come from; empty for none
};
