#pragma once

#include <surrogate_session/Export.h>

#include <string_view>

/** Whether a text reads as a date, a time or both: two groups of digits at least with the
 *  separators of dates and times between them; names of months and the like may stand among them.
 *  "1/8", "1:4" and "0.5-1.5" are fractions and spans. */
SURROGATE_SESSION_EXPORT bool isDateOrTime(std::string_view text);
