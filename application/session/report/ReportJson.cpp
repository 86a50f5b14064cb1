#include "session/report/ReportJson.h"

#include "session/files/OutputFile.h"
#include "session/files/OutputTable.h"
#include "session/project/ModelChoices.h"

namespace {
/** How text() ends an object. */
const std::string objectEnd = "\n}\n";
} // namespace

void ReportJson::addResponseSurface(const ModelChoices& choices, Json& json)
{
    json["terms"] = termsWord(choices.responseSurface.terms);
    if (choices.responseSurface.terms == PolynomialTerms::Chosen) {
        json["formula"] = choices.responseSurface.formula;
    }
    json["selectsTerms"] = choices.selectsTerms();
    if (!choices.designColumns.weights.empty()) {
        json["weights"] = choices.designColumns.weights;
    }
    if (!choices.designColumns.blocks.empty()) {
        json["blocks"] = choices.designColumns.blocks;
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
