#pragma once

#include <mirel_fitting/Export.h>

#include <string>

/** Numbers as text, in the C locale whatever the application has set. */
class MIREL_FITTING_EXPORT NumberText
{
public:
    /** The shortest text that reads back as the same double. */
    static std::string shortest(double value);

    /** At most `digits` significant digits, without trailing zeros. Eight distinguish the fits of
     *  almost any two tables of cases. */
    static std::string rounded(double value, int digits = 8);

    /** "12 %", of 0.12. */
    static std::string percent(double share);
};
