#pragma once

#include <plot/data/CaseMark.h>

#include <string>
#include <vector>

/** The residuals of one output against the normal quantiles of their ranks, with the line on which
 *  normal ones lie. */
struct NormalPicture
{
    std::string title;
    std::vector<double> quantiles;  ///< ascending
    std::vector<double> residuals;  ///< as many, ascending: studentised, finite
    double limit = 0.0;             ///< of suspected outliers, both ways
    std::vector<CaseMark> outliers; ///< suspected ones, ascending
    std::string caption;            ///< empty for none
};
