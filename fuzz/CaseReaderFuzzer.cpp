// A case file with recognised layout, or with what a user says in the first bytes: a sentence about
// what is wrong, or a table that a workspace takes and summarises.
#include "MemoryFile.h"

#include <session/cases/CaseFileReader.h>
#include <session/cases/CaseRoles.h>
#include <session/model/Workspace.h>
#include <session/report/SummaryReport.h>
#include <session/text/SessionErrors.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>

namespace {

/** What the bits of the first two bytes stand for; two blanks leave everything to recognition. */
CaseFileReader::Options optionsOf(unsigned bits)
{
    const auto take = [&bits](unsigned count) { return std::exchange(bits, bits / count) % count; };
    CaseFileReader::Options options;
    if (const unsigned separator = take(6)) {
        options.separator = ",;\t| "[separator - 1];
    }
    if (const unsigned mark = take(3)) {
        options.decimalMark = mark == 1 ? CellValue::Point : CellValue::Comma;
    }
    if (const unsigned heading = take(3)) {
        options.heading = heading == 1;
    }
    if (const unsigned units = take(3)) {
        options.unitsRow = units == 1;
    }
    if (const unsigned encoding = take(5)) {
        options.encoding = static_cast<TextEncoding>(encoding - 1);
    }
    if (const unsigned skipped = take(3)) {
        options.skippedLines = skipped;
    }
    if (const unsigned comment = take(3)) {
        options.commentMark = comment == 1 ? "" : "!";
    }
    options.isStrict = take(2) == 1;
    options.keepCells = take(2) == 1;
    return options;
}

void checkTable(const CaseTable& table, const CaseFileReader::Options& options)
{
    const std::vector<std::string> names = table.names();
    FUZZ_CHECK(!names.empty());
    FUZZ_CHECK(std::set<std::string>(names.begin(), names.end()).size() == names.size());
    for (const CaseColumn& column : table.columns) {
        FUZZ_CHECK(column.numbers.size() == (column.isNumeric ? table.cases : 0));
        FUZZ_CHECK(options.keepCells || column.isNumeric || column.texts.size() == table.cases);
        FUZZ_CHECK(column.withoutNumber.count <= table.cases);
        FUZZ_CHECK(!options.separator || table.layout.separator == *options.separator);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    if (size < 2) {
        return 0;
    }
    const CaseFileReader::Options options =
        optionsOf(static_cast<std::uint8_t>(bytes[0] - ' ') |
                  static_cast<unsigned>(static_cast<std::uint8_t>(bytes[1] - ' ')) << 8);
    const MemoryFile file(bytes + 2, size - 2);
    try {
        CaseTable table = CaseFileReader::read(file.path(), options);
        checkTable(table, options);
        const CaseRoles roles = chooseCaseRoles(table, {}, {}, UnnamedOutputs::Suggested);
        const Workspace workspace(std::move(table), roles, {}, Workspace::ResponseSurface);
        FUZZ_CHECK(!SummaryReport::text(workspace).empty());
    } catch (const CaseDataError&) {
    } catch (const UsageError&) {
    }
    return 0;
}
