#include "session/cases/LayoutRecognition.h"

#include "session/cases/NumberMarks.h"
#include "session/cases/SampleRecords.h"
#include "session/cases/TableParts.h"
#include "session/text/AsciiText.h"
#include "session/text/CellValue.h"
#include "session/text/UnitText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace {
/** The first line of files for spreadsheets may say "sep=;". */
std::optional<char> declaredSeparator(std::string_view line)
{
    line = trimmedText(line);
    if (line.size() > 1 && line.front() == '"' && line.back() == '"') {
        line = line.substr(1, line.size() - 2);
    }
    const std::string_view word = line.substr(0, 4);
    const bool isDeclaration = word == "sep=" || word == "SEP=" || word == "Sep=";
    if (!isDeclaration || line.size() > 5) {
        return std::nullopt;
    }
    const char separator = line.size() == 5 ? line[4] : '\t'; // trimmed
    const bool isKnown = std::string_view(",;\t| ").find(separator) != std::string_view::npos;
    return isKnown ? std::make_optional(separator) : std::nullopt;
}

/** A comment line that may be the heading: `text` begins after the mark. */
struct Comment
{
    std::size_t position = 0;
    std::size_t line = 1;
};

/** The comment lines between the end of the record before and this one. */
std::vector<Comment> commentsAbove(std::string_view sample, const SampleRecord& record,
                                   const CaseFileLayout& layout)
{
    std::vector<Comment> comments;
    std::size_t position = record.begin;
    position +=
        beginsWith(sample.substr(position), utf8ByteOrderMark) ? utf8ByteOrderMark.size() : 0;
    for (std::size_t number = record.beginLine; number < record.line; ++number) {
        const SampleLine line = SampleLine::at(sample, position);
        const std::string_view text = trimmedText(line.text);
        for (const std::string& mark : layout.commentMarks) {
            if (!beginsWith(text, mark)) {
                continue;
            }
            // "%RH" and "#" alone are names, "#run" and "# run" are one after a mark.
            const std::string_view rest = text.substr(mark.size());
            const bool hasBlankAfterMark = rest != trimmedText(rest);
            const bool belongsToName =
                (mark == "%" && !hasBlankAfterMark) ||
                (!trimmedText(rest).empty() && trimmedText(rest).front() == layout.separator);
            comments.push_back({static_cast<std::size_t>(text.data() - sample.data()) +
                                    (belongsToName ? 0 : mark.size()),
                                number});
            break;
        }
        position = line.next;
    }
    return comments;
}

/** The first record from a comment's text on. */
std::optional<SampleRecord> recordAt(std::string_view sample, const Comment& comment,
                                     CaseFileLayout layout)
{
    layout.tableBegin = 0;
    layout.commentMarks.clear();
    const SampleRecords line(SampleLine::at(sample, comment.position).text, true, layout);
    return line.records.empty() ? std::nullopt : std::make_optional(line.records.front());
}

std::vector<std::string> unitsOf(const SampleRecord& record)
{
    std::vector<std::string> units;
    for (const std::string& cell : record.cells) {
        const bool saysNothing = cell == "-" || cell == "--" || cell == "1";
        units.push_back(saysNothing ? std::string() : unitWithoutBrackets(cell));
    }
    return units;
}

/** Makes the comment line above a record the heading, if it can be. @return whether it is. */
bool takeHeadingFromComment(std::string_view sample, const SampleRecord& record,
                            const TableParts& parts, CaseFileLayout& layout)
{
    const std::vector<Comment> comments = commentsAbove(sample, record, layout);
    const auto namesAt = [&](std::size_t fromLast) -> std::optional<SampleRecord> {
        if (fromLast >= comments.size()) {
            return std::nullopt;
        }
        const Comment& comment = comments[comments.size() - 1 - fromLast];
        auto names = recordAt(sample, comment, layout);
        if (layout.separator == '\t' && names && names->cells.size() < parts.columns()) {
            CaseFileLayout ofBlanks = layout; // numbers between tabs can be split there, too
            ofBlanks.separator = CaseFileLayout::blanks;
            names = recordAt(sample, comment, ofBlanks);
            layout.separator =
                names && names->cells.size() == parts.columns() && parts.canBeNames(*names, false)
                    ? CaseFileLayout::blanks
                    : '\t';
        }
        const bool fits = names && names->cells.size() == parts.columns();
        return fits ? names : std::nullopt;
    };
    std::size_t fromLast = 0;
    std::optional<SampleRecord> heading = namesAt(0);
    const auto isUnit = [](const std::string& cell) { return isUnitText(cell) || cell == "-"; };
    if (heading && std::all_of(heading->cells.begin(), heading->cells.end(), isUnit) &&
        namesAt(1)) {
        layout.units = unitsOf(*heading);
        heading = namesAt(1);
        fromLast = 1;
    }
    // A sentence is no name of a single column.
    const bool isSentence =
        heading && parts.columns() == 1 && heading->cells.front().find(' ') != std::string::npos;
    if (!heading || isSentence || !parts.canBeNames(*heading, false)) {
        layout.units.clear();
        return false;
    }
    const std::size_t position = comments.size() - 1 - fromLast;
    layout.isHeadingComment = true;
    layout.tableBegin = comments[position].position;
    layout.tableLine = comments[position].line;
    layout.commentLines = record.comments + position;
    return true;
}

/** Whether a line begins with one of the marks; an error of a spreadsheet (#N/A) is a cell. */
bool isComment(std::string_view line, const std::vector<std::string>& marks)
{
    const std::string_view text = trimmedText(line);
    return !CellValue::beginsWithError(text) &&
           std::any_of(marks.begin(), marks.end(), [&](const std::string& mark) {
               return !mark.empty() && beginsWith(text, mark);
           });
}

/** Where lines with a mark are most of the table, they are none of comments: those that have as
 * many separators as the line before, or as many words where neither has one. */
bool hasComments(std::string_view sample, const CaseFileLayout& layout)
{
    const auto shapeOf = [](std::string_view text) {
        std::array<std::ptrdiff_t, 5> counts{};
        std::size_t kind = 0;
        for (const char separator : {',', ';', '\t', '|'}) {
            counts[kind++] = std::count(text.begin(), text.end(), separator);
        }
        if (counts == std::array<std::ptrdiff_t, 5>{}) {
            counts.back() = std::count(text.begin(), text.end(), ' ');
        }
        return counts;
    };
    std::ptrdiff_t rows = 0;
    std::ptrdiff_t likeRows = 0;
    std::array<std::ptrdiff_t, 5> shape{};
    for (SampleLine line = SampleLine::at(sample, layout.tableBegin); line.begin < sample.size();
         line = SampleLine::at(sample, line.next)) {
        const std::string_view text = trimmedText(line.text);
        if (isComment(text, layout.commentMarks)) {
            likeRows += rows > 0 && shapeOf(text) == shape ? 1 : 0;
        } else if (!text.empty()) {
            ++rows;
            shape = shapeOf(text);
        }
    }
    return likeRows <= rows;
}

void takeParts(std::string_view sample, bool isWholeFile, const ReadingChoices& choices,
               CaseFileLayout& layout)
{
    const SampleRecords table(sample, isWholeFile, layout);
    const std::vector<SampleRecord>& records = table.records;
    if (records.empty()) {
        return;
    }
    const TableParts parts(table);
    layout.columns = parts.columns();
    takeNumberMarks(records, parts, choices, layout);

    std::optional<std::size_t> heading = parts.heading();
    if (choices.skippedLines) {
        heading = heading == std::size_t(0) ? heading : std::nullopt;
    }
    std::size_t first = heading.value_or(0);
    layout.hasHeading = heading.has_value();
    if (choices.heading) {
        layout.hasHeading = *choices.heading;
        while (!layout.hasHeading && first + 1 < records.size() && !parts.isCase(first)) {
            ++first;
        }
    } else if (!heading && parts.faultyHeading()) {
        first = choices.skippedLines ? 0 : *parts.faultyHeading();
        layout.hasHeading = true;
    } else if (!heading && takeHeadingFromComment(sample, records.front(), parts, layout)) {
        layout.hasHeading = true;
        return;
    } else if (!heading) {
        layout.hasHeading = !parts.isOfNumbersAlone(0);
    }

    layout.tableBegin = records[first].begin;
    layout.tableLine = records[first].beginLine;
    if (layout.hasHeading && parts.hasLabel(first)) {
        layout.tableBegin = sample.find(records[first].cells.front(), layout.tableBegin) +
                            records[first].cells.front().size();
        layout.tableLine = records[first].line;
    }
    layout.commentLines = records[first].comments;
    layout.titleLines += static_cast<std::size_t>(
        std::count_if(records.begin(), records.begin() + static_cast<std::ptrdiff_t>(first),
                      [](const SampleRecord& record) { return record.filledCells() > 0; }));
    layout.hasRowNames = layout.hasHeading && parts.hasRowNames(first);
    const std::size_t below = first + 1;
    if (!layout.hasHeading || below >= records.size()) {
        return;
    }
    const bool isUnits = parts.readsAsUnits(below);
    layout.hasUnitsRow =
        choices.unitsRow.value_or(isUnits || (heading && parts.readsAsSecondHeading(below)));
    if (layout.hasUnitsRow && (isUnits || choices.unitsRow)) {
        layout.units = unitsOf(records[below]);
    }
}

/** Where the lines end that the user skips, or the comment and empty lines at the beginning. */
std::size_t endOfLinesAbove(std::string_view sample, const ReadingChoices& choices)
{
    const std::vector<std::string> marks = choices.commentMark
                                               ? std::vector<std::string>{*choices.commentMark}
                                               : CaseFileLayout().commentMarks;
    std::size_t position = 0;
    for (std::size_t lines = 0; position < sample.size(); ++lines) {
        const SampleLine line = SampleLine::at(sample, position);
        const bool isAbove = choices.skippedLines
                                 ? lines < *choices.skippedLines
                                 : isComment(line.text, marks) || trimmedText(line.text).empty();
        if (!isAbove) {
            break;
        }
        position = line.next;
    }
    return position;
}
} // namespace

CaseFileLayout recogniseLayout(std::string_view sample, bool isWholeFile,
                               const ReadingChoices& choices)
{
    CaseFileLayout layout;
    if (choices.commentMark) {
        layout.commentMarks.assign(choices.commentMark->empty() ? 0 : 1, *choices.commentMark);
    }
    const std::size_t begin = beginsWith(sample, utf8ByteOrderMark) ? utf8ByteOrderMark.size() : 0;
    const auto skipLine = [&](const SampleLine& line) {
        layout.tableBegin = line.next;
        ++layout.tableLine;
    };
    const SampleLine firstLine = SampleLine::at(sample, begin);
    const std::optional<char> declared = declaredSeparator(firstLine.text);
    if (declared) {
        skipLine(firstLine);
    }
    for (std::size_t i = 0; i < choices.skippedLines.value_or(0); ++i) {
        const SampleLine line = SampleLine::at(sample, layout.tableBegin);
        layout.titleLines += trimmedText(line.text).empty() ? 0 : 1;
        skipLine(line);
    }
    if (!choices.commentMark && !hasComments(sample, layout)) {
        layout.commentMarks.clear();
    }
    layout.separator = choices.separator ? *choices.separator
                       : declared        ? *declared
                                  : SampleRecords::recognisedSeparator(sample, isWholeFile, layout);
    takeParts(sample, isWholeFile, choices, layout);
    return layout;
}

CaseFileLayout
recogniseLayout(const std::function<std::size_t(char* buffer, std::size_t capacity)>& read,
                std::size_t sampleSize, const ReadingChoices& choices)
{
    std::string sample;
    bool isWholeFile = false;
    std::size_t wanted = sampleSize;
    do {
        std::size_t filled = sample.size();
        sample.resize(wanted);
        while (filled < wanted && !isWholeFile) {
            const std::size_t count = read(sample.data() + filled, wanted - filled);
            isWholeFile = count == 0;
            filled += count;
        }
        sample.resize(filled);
        wanted = 2 * filled;
    } while (!isWholeFile && 2 * endOfLinesAbove(sample, choices) > sample.size());
    return recogniseLayout(sample, isWholeFile, choices);
}
