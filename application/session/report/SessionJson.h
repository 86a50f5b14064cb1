#pragma once

#include "session/cases/CaseCounts.h"

#include <nlohmann/json.hpp>

#include <string>

/** What the JSON texts of a session have in common. A number that is not finite is null in them. */
namespace SessionJson {
using Json = nlohmann::ordered_json;

/** Of all objects: their member "schema". */
constexpr int schemaVersion = 1;

inline Json casesJson(const CaseCounts& counts)
{
    return {{"read", counts.read},
            {"valid", counts.valid},
            {"excluded", counts.excluded},
            {"invalid", counts.invalid}};
}

/** As it is printed; bytes of names that are no UTF-8 are replaced. */
inline std::string dumped(const Json& json)
{
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}
} // namespace SessionJson
