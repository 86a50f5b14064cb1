#pragma once

#include <mirel_fitting/Extrapolation.h>

#include <string>
#include <vector>

/**
 * One output along one input, all others held: the model as a line, its band, and cases near it.
 * All numbers are finite, in the units of the variables.
 */
struct SweepPicture
{
    std::string title;
    std::string inputName;
    std::string outputName;
    std::vector<double> inputs; ///< ascending; the columns of the model have as many values
    std::vector<double> model;
    std::vector<double> lower; ///< of the band; empty, like `upper`, for none
    std::vector<double> upper;
    std::vector<double> caseInputs;
    std::vector<double> caseOutputs; ///< as many
    /** The axis of the output reaches over these too: pictures with the same ones share an axis. */
    std::vector<double> axisOutputs;
    bool isLogarithmic = false; ///< the axis of the output, where the values allow it
    std::string modelLabel;     ///< what the legend says; empty, like the other two: no legend
    std::string bandLabel;
    std::string caseLabel;
    std::string caption; ///< what is held, which cases count as near; empty for none
    Extrapolation extrapolation;
};
