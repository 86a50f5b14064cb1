#pragma once

#include <surrogate_session/Export.h>

#include <string>

/**
 * Appends the shortest decimal text that reads back as the same double, whatever the locale; whole
 * numbers below 10^15 without an exponent. NaN appends "nan", infinity "inf".
 */
SURROGATE_SESSION_EXPORT void appendNumber(std::string& text, double number);

/** That text alone. */
SURROGATE_SESSION_EXPORT std::string numberText(double number);
