#pragma once

#include <string>

/** Which points lie outside the cases, in parts of a sentence for the user; all are empty if none
 *  does. */
struct Extrapolation
{
    std::string points; ///< "2 of 6 points lie outside the cases"
    std::string rows;   ///< "rows 3 and 5", counted from 1; empty of one point alone
    std::string reason; ///< "\"Pressure\" is up to 0.25 of its range beyond them"

    /** The sentence; empty if no point lies outside. */
    std::string text() const
    {
        return points.empty() ? ""
                              : points + (rows.empty() ? "" : " (" + rows + ')') + ": " + reason +
                                    ". Do not rely on predictions there.";
    }
};
