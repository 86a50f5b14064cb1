#include "session/project/ProjectCases.h"

#include "session/text/SessionErrors.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <vector>

namespace {
bool isXmlDocument(const std::string& path)
{
    constexpr std::string_view declaration = "<?xml";
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored)) {
        return false; // A pipe can be read only once.
    }
    std::array<char, declaration.size()> beginning = {};
    std::ifstream(path, std::ios::binary).read(beginning.data(), beginning.size());
    return std::string_view(beginning.data(), beginning.size()) == declaration;
}

/** The inputs of the model; a variable that is not independent cannot be one. */
std::vector<std::string> independentInputs(const ProjectDocument& document)
{
    std::vector<std::string> inputs;
    for (const std::string& name : document.modelInputs()) {
        const bool isIndependent = std::any_of(
            document.variables.begin(), document.variables.end(), [&](const auto& variable) {
                return variable.name == name && variable.role == Variable::Independent;
            });
        if (isIndependent) {
            inputs.push_back(name);
        }
    }
    return inputs;
}

std::vector<std::size_t> positionsOf(const std::vector<std::string>& wanted,
                                     const std::vector<std::string>& names)
{
    std::vector<std::size_t> positions;
    for (const std::string& name : wanted) {
        const auto found = std::find(names.begin(), names.end(), name);
        if (found != names.end()) {
            positions.push_back(static_cast<std::size_t>(found - names.begin()));
        }
    }
    return positions;
}
} // namespace

CaseTable readCaseTable(const std::string& path, const CaseFileReader::Options& options)
{
    if (isXmlDocument(path)) {
        throw CaseDataError("\"" + path +
                            "\" is an XML document, not a table of cases; if it is a "
                            "project, give it a name that ends with " +
                            ProjectDocument::fileEnding + '.');
    }
    return CaseFileReader::read(path, options);
}

CaseFileReader::Options readingOptions(const ProjectDocument& document,
                                       CaseFileReader::Options options)
{
    const ProjectDocument::CaseFile& file = document.caseFile;
    const ReadingChoices& kept = file.reading;
    const auto keep = [](auto& choice, const auto& otherwise) {
        if (!choice) {
            choice = otherwise;
        }
    };
    keep(options.separator, file.separator);
    if (!options.decimalMark) {
        keep(options.thousandsSeparator, kept.thousandsSeparator);
        if (file.hasDecimalComma) {
            options.decimalMark = CellValue::Comma;
        } else if (options.thousandsSeparator != '.') {
            options.decimalMark = CellValue::Point;
        }
    }
    keep(options.encoding, kept.encoding);
    keep(options.heading, kept.heading);
    keep(options.unitsRow, kept.unitsRow);
    keep(options.skippedLines, kept.skippedLines);
    keep(options.commentMark, kept.commentMark);
    if (options.missing.isEmpty()) {
        options.missing = kept.missing;
    }
    options.isStrict = options.isStrict || kept.isStrict;
    return options;
}

std::string otherCasesNote(const ProjectDocument& document, const std::string& path)
{
    return FileFingerprint::of(path) == document.caseFile.fingerprint
               ? std::string()
               : '"' + path +
                     "\" holds other data than the case file that the project was saved with.";
}

CaseRoles rolesIn(const ProjectDocument& document, const CaseTable& table)
{
    const std::vector<std::string> names = table.names();
    return {positionsOf(independentInputs(document), names), positionsOf(document.outputs, names)};
}
