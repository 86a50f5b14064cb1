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

/**
 * Without the rounding errors of arithmetic on decimal fractions: 271.8, not 271.79999999999995.
 * @param scale how large the operands were.
 * @return the number of 15 digits at most (of the scale's) within four units in the last place of
 *         the scale, if there is one; else the number.
 */
SURROGATE_SESSION_EXPORT double nearbyDecimal(double number, double scale);

/** A number for people to read, of so many digits; "-" for NaN and infinity. */
SURROGATE_SESSION_EXPORT std::string shownNumber(double number, int digits = 6);

/** A figure in a sentence: four digits, without an exponent below ten millions; "-" for NaN. */
SURROGATE_SESSION_EXPORT std::string shownFigure(double number);

/** A probability that a test gives, of at most four digits: "0.0123", "< 0.0001"; "-" for NaN. */
SURROGATE_SESSION_EXPORT std::string shownProbability(double probability);

/** The same in a sentence: "p = 0.0123", "p < 0.0001". */
SURROGATE_SESSION_EXPORT std::string probabilityText(double probability);
