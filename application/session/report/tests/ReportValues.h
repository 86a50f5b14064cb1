#pragma once

#include <session/report/FitReport.h>

#include <nlohmann/json.hpp>

#include <string>
#include <utility>
#include <vector>

/** The names in an object of JSON, in its order. */
template <class Json>
std::vector<std::string> keysOf(const Json& object)
{
    std::vector<std::string> keys;
    for (const auto& item : object.items()) {
        keys.push_back(item.key());
    }
    return keys;
}

/** The first output in the report of a session's fit, as a reader gets it. */
inline nlohmann::ordered_json outputIn(CaseSession& session)
{
    return nlohmann::ordered_json::parse(ReportJson::text(FitReport::json(session)))["outputs"][0];
}

inline nlohmann::ordered_json outputOf(CaseSession session)
{
    return outputIn(session);
}
