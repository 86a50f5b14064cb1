#pragma once

#include <surrogate_session/Export.h>

#include <nlohmann/json.hpp>

#include <string>

class OutputFile;
struct ModelChoices;
struct OutputTable;

/** What the JSON reports have in common: objects with a member "schema". */
namespace ReportJson {
using Json = nlohmann::ordered_json;

constexpr int schemaVersion = 1;

/** What is chosen for a response surface: "terms", "formula" of chosen ones, "selectsTerms", and
 * the columns "weights" and "blocks" if there are any. */
void addResponseSurface(const ModelChoices& choices, Json& json);

/** On indented lines. A number that is not finite is null; bytes that are no UTF-8 are replaced. */
SURROGATE_SESSION_EXPORT std::string text(const Json& json);

/** Writes text() of an object that is not empty, with the table as its last member "table". Rows
 * are written one by one: a million of them as a JSON value would need gigabytes. */
SURROGATE_SESSION_EXPORT void write(const Json& object, const OutputTable& table, OutputFile& out);
} // namespace ReportJson
