#pragma once

#include <plot/data/CaseMark.h>

#include <string>
#include <vector>

/** Cases as points, with a reference line on or about which they lie if the model is right. */
struct ScatterPicture
{
    enum Reference
    {
        Zero,              ///< y = 0
        Diagonal,          ///< y = x
        DiagonalOfOneScale ///< y = x; both axes have the same range
    };

    std::string title;
    std::string xName; ///< with the unit
    std::string yName;
    std::vector<double> x;       ///< finite
    std::vector<double> y;       ///< as many
    std::vector<CaseMark> marks; ///< points with the numbers of their cases
    Reference reference = Zero;
    /** Two lines are drawn at this distance from the reference line; 0 for none. */
    double limit = 0.0;
    /** Whether the axes of predictions (x, and y with DiagonalOfOneScale) are logarithmic where
     *  the values allow it; then the limit of a diagonal is one of natural logarithms. */
    bool isLogarithmic = false;
    std::string referenceLabel; ///< what the legend says; empty, like the other two: not in it
    std::string limitLabel;
    std::string caseLabel;
    std::string caption; ///< empty for none
};
