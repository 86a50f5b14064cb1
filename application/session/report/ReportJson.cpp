#include "session/report/ReportJson.h"

#include "session/cases/CaseCounts.h"
#include "session/cases/CaseDesignColumns.h"
#include "session/files/OutputFile.h"
#include "session/files/OutputTable.h"

namespace {
/** How text() ends an object. */
const std::string objectEnd = "\n}\n";
} // namespace

ReportJson::Json ReportJson::cases(const CaseCounts& counts)
{
    return {{"read", counts.read},
            {"valid", counts.valid},
            {"excluded", counts.excluded},
            {"invalid", counts.invalid}};
}

void ReportJson::addDesign(const CaseDesignColumns& columns, Json& json)
{
    if (!columns.weights.empty()) {
        json["weights"] = columns.weights;
    }
    if (!columns.blocks.empty()) {
        json["blocks"] = columns.blocks;
    }
}

std::string ReportJson::text(const Json& json)
{
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

void ReportJson::write(const Json& object, const OutputTable& table, OutputFile& out)
{
    std::string members = text(object);
    members.resize(members.size() - objectEnd.size());
    out.write(members + ",\n  \"table\": ");
    writeJson(table, out);
    out.write(objectEnd);
}
