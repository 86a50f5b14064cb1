#pragma once

#include <mirel_fitting/Extrapolation.h>

#include <cstddef>
#include <string>
#include <vector>

/**
 * One output over two inputs, all others held: filled bands between labelled lines. All numbers are
 * finite, in the units of the variables.
 */
struct ContourPicture
{
    struct Extreme
    {
        double x = 0.0;
        double y = 0.0;
        double value = 0.0;
    };

    std::string title;
    std::string xName;
    std::string yName;
    std::string outputName;
    std::vector<double> x; ///< strictly ascending, two at least, like `y`
    std::vector<double> y;
    std::vector<double> values;    ///< x.size() * y.size(), y varying fastest
    std::vector<char> isOutside;   ///< one per value, 1 where the cases support none; empty: none
    bool isLogarithmic = false;    ///< the levels, where the values allow it
    std::vector<Extreme> extremes; ///< the least and the largest value; none of equal values
    std::vector<double> caseX;     ///< each point once
    std::vector<double> caseY;     ///< as many
    std::vector<std::size_t> caseCounts; ///< as many: the cases at each point
    std::string caseLabel;               ///< what the legend says
    std::string caption; ///< what is held, which cases count as near; empty for none
    Extrapolation extrapolation;
};
