#pragma once

#include <cstddef>
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

    /** A point that is named by its case. */
    struct Mark
    {
        std::size_t point = 0;      ///< its position
        std::size_t caseNumber = 0; ///< from 1, as in the case file
    };

    std::string title;
    std::string xName; ///< with the unit
    std::string yName;
    std::vector<double> x; ///< finite
    std::vector<double> y; ///< as many
    std::vector<Mark> marks;
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
