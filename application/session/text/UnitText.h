#pragma once

#include <surrogate_session/Export.h>

#include <string>
#include <string_view>

/**
 * Whether a text reads as a unit: anything in brackets, a percent or degree sign, or units of
 * measurement with their prefixes, powers, products and quotients (MPa, 1/min, kg/m^3, W/(m K)).
 */
SURROGATE_SESSION_EXPORT bool isUnitText(std::string_view text);

/** A unit without the brackets around it. */
SURROGATE_SESSION_EXPORT std::string unitWithoutBrackets(std::string_view text);
