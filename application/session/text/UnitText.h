#pragma once

#include <surrogate_session/Export.h>

#include <string>
#include <string_view>
#include <utility>

/**
 * Whether a text reads as a unit: anything in brackets, a percent or degree sign, or units of
 * measurement with their prefixes, powers, products and quotients (MPa, 1/min, kg/m^3, W/(m K)).
 */
SURROGATE_SESSION_EXPORT bool isUnitText(std::string_view text);

/** What numberAndUnit() answers as the unit of a number with its error. */
inline constexpr char plusMinus[] = "\u00B1";

/** The two parts of a number with its unit: "12 mm", "5%", "$3", "-$3", "($3)", which is negative,
 *  and "1.5 +/- 0.1", without the error. The number may be any text that has no letters; the unit
 *  is empty for texts that have none after or a currency before it. A letter right after the
 *  number, "3A", is no unit. */
SURROGATE_SESSION_EXPORT std::pair<std::string, std::string_view>
numberAndUnit(std::string_view text);

/** "Stress (MPa)"; the name alone without a unit, or where it has that unit in brackets itself. */
SURROGATE_SESSION_EXPORT std::string nameWithUnit(const std::string& name, const std::string& unit);

/** A unit without the brackets around it. */
SURROGATE_SESSION_EXPORT std::string unitWithoutBrackets(std::string_view text);
