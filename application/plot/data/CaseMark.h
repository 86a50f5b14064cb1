#pragma once

#include <cstddef>

/** A point of a picture that is named by its case. */
struct CaseMark
{
    std::size_t point = 0;      ///< position among the points of the picture
    std::size_t caseNumber = 0; ///< from 1, as in the case file
};
