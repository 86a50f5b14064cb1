#pragma once

#include <plot/data/CaseMark.h>

#include <string>
#include <vector>

/** Predicted against actual values of one output, with the diagonal on which they are equal. */
struct ActualPicture
{
    std::string title;
    std::string outputName;
    std::string unit;              ///< of the output; empty if it is not known
    std::vector<double> actual;    ///< finite, in the unit of the output
    std::vector<double> predicted; ///< as many
    std::vector<CaseMark> worst;   ///< the largest differences, the worst first
    /** Two standard deviations of the differences, drawn at both sides; 0 for none. */
    double limit = 0.0;
    /** Whether the axes are logarithmic where the values allow it; then `limit` is that of the
     *  differences of natural logarithms. */
    bool isLogarithmic = false;
    std::string caption; ///< where the predictions come from; empty for none
};
