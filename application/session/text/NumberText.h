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

/** A number for people to read, of so many digits; "-" for NaN. */
SURROGATE_SESSION_EXPORT std::string shownNumber(double number, int digits = 6);
