#include "session/cases/LayoutRecognition.h"

#include "session/cases/CsvSplitter.h"
#include "session/text/CellValue.h"
#include "session/text/TrimmedText.h"
#include "session/text/UnitText.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {
/** More of them do not change what most of them say. */
constexpr std::size_t maxRecords = 500;

struct Record
{
    std::size_t begin = 0;     ///< behind the record before, in bytes
    std::size_t beginLine = 1; ///< the line of that
    std::size_t line = 1;
    std::size_t comments = 0; ///< lines before `begin`
    bool followsEmptyLine = false;
    std::vector<std::string> cells;
};

bool isNumber(const std::string& cell, char separator)
{
    const bool endsWithSeparator = !cell.empty() && (cell.back() == ',' || cell.back() == ';');
    if (separator == CaseFileLayout::blanks && endsWithSeparator) {
        return false;
    }
    CellValue::DecimalMark mark = CellValue::NoMark;
    // Between commas a cell with a comma was quoted.
    return CellValue::read(cell, true).kind == CellValue::Number ||
           CellValue::thousandsSeparator(cell, mark) != '\0';
}

CsvSplitter splitterOf(std::string_view sample, const CaseFileLayout& layout)
{
    const auto read = [rest = sample](char* buffer, std::size_t capacity) mutable {
        const std::size_t count = rest.copy(buffer, capacity);
        rest.remove_prefix(count);
        return count;
    };
    return CsvSplitter(read, layout, sample.size() + 1);
}

/** A line of the sample; positions count from its beginning. */
struct Line
{
    std::size_t begin = 0;
    std::size_t behind = 0; ///< where the next one begins
    std::string_view text;
};

Line lineAt(std::string_view sample, std::size_t begin)
{
    const std::size_t end = std::min(sample.find_first_of("\r\n", begin), sample.size());
    const bool isPair = sample.substr(end, 2) == "\r\n";
    return {begin, std::min(end + (isPair ? 2 : 1), sample.size()),
            sample.substr(begin, end - begin)};
}

std::size_t behindLines(std::string_view sample, std::size_t begin, std::size_t count)
{
    for (; count > 0; --count) {
        begin = lineAt(sample, begin).behind;
    }
    return begin;
}

/** Appends the records of a layout's table. @return what follows the last one. */
Record appendRecords(CsvSplitter& splitter, const CaseFileLayout& layout, std::size_t commentsAbove,
                     std::vector<Record>& records)
{
    Record record;
    record.begin = layout.tableBegin;
    record.beginLine = layout.tableLine;
    record.comments = commentsAbove;
    while (records.size() < maxRecords && splitter.next()) {
        const std::size_t comments = commentsAbove + splitter.commentLines();
        record.line = splitter.line();
        record.cells.assign(splitter.cells().begin(), splitter.cells().end());
        const std::size_t skipped = record.line - record.beginLine;
        record.followsEmptyLine = skipped > comments - record.comments;
        records.push_back(std::move(record));
        record = Record();
        record.begin = splitter.bytesSplit();
        record.beginLine = splitter.lineBehind();
        record.comments = comments;
    }
    return record;
}

std::vector<Record> recordsOf(std::string_view sample, bool isWholeFile, CaseFileLayout layout)
{
    constexpr int maxOpenTitles = 30;
    std::vector<Record> records;
    std::size_t commentsAbove = 0;
    for (int openTitles = 0;; ++openTitles) {
        CsvSplitter splitter = splitterOf(sample, layout);
        const Record rest = appendRecords(splitter, layout, commentsAbove, records);
        const bool isTitle = splitter.hasUnclosedQuote() && 2 * rest.begin < sample.size();
        if (!isTitle || openTitles == maxOpenTitles) {
            break;
        }
        // The quote of a title; a cell is closed.
        layout.tableLine = splitter.line() + 1;
        layout.tableBegin = behindLines(sample, rest.begin, layout.tableLine - rest.beginLine);
        commentsAbove = rest.comments;
    }
    if (!isWholeFile && records.size() > 1 && records.size() < maxRecords) {
        records.pop_back(); // The sample may end inside the last record.
    }
    return records;
}

/** The records of a sample under one separator. */
class Candidate
{
public:
    Candidate(std::string_view sample, bool isWholeFile, const CaseFileLayout& layout)
        : records(recordsOf(sample, isWholeFile, layout)), separator(layout.separator)
    {
        std::map<std::size_t, std::size_t> recordsBySize;
        for (const Record& record : records) {
            const bool isEmpty = std::all_of(record.cells.begin(), record.cells.end(),
                                             [](const std::string& cell) { return cell.empty(); });
            recordsBySize[record.cells.size()] += isEmpty ? 0 : 1;
        }
        for (const auto& [cells, count] : recordsBySize) {
            if (cells > 1 && count > 0 && count >= coverage) {
                coverage = count;
                cellCount = cells;
            }
        }
    }

    /** Of the cells of records that have cellCount cells; those that are empty do not count. */
    double shareOfNumbers() const
    {
        std::size_t filled = 0;
        std::size_t numbers = 0;
        for (const Record& record : records) {
            for (const std::string& cell : record.cells) {
                const bool counts = record.cells.size() == cellCount && !cell.empty();
                filled += counts ? 1 : 0;
                numbers += counts && isNumber(cell, separator) ? 1 : 0;
            }
        }
        return filled == 0 ? 0.0 : static_cast<double>(numbers) / static_cast<double>(filled);
    }

    /** Whether a column holds nothing, its heading included. */
    bool hasEmptyColumn() const
    {
        for (std::size_t column = 0; column < cellCount; ++column) {
            if (std::all_of(records.begin(), records.end(), [&](const Record& record) {
                    return column >= record.cells.size() || record.cells[column].empty();
                })) {
                return true;
            }
        }
        return false;
    }

    std::vector<Record> records;
    char separator;
    std::size_t cellCount = 1; ///< that most records have; 1 if none has more
    std::size_t coverage = 0;  ///< how many records have so many
};

char recogniseSeparator(std::string_view sample, bool isWholeFile, CaseFileLayout layout)
{
    char best = ',';
    std::tuple<std::size_t, double, std::size_t> bestScore(0, 0.0, 0);
    for (const char separator : {'\t', ';', ',', '|'}) {
        layout.separator = separator;
        const Candidate candidate(sample, isWholeFile, layout);
        const std::tuple<std::size_t, double, std::size_t> score(
            candidate.coverage, candidate.coverage == 0 ? 0.0 : candidate.shareOfNumbers(),
            candidate.cellCount);
        if (candidate.coverage > 0 && score > bestScore) {
            best = separator;
            bestScore = score;
        }
    }
    layout.separator = CaseFileLayout::blanks;
    const Candidate blanks(sample, isWholeFile, layout);
    constexpr double half = 0.5;
    const double share = blanks.shareOfNumbers();
    const auto [bestCoverage, bestShare, bestCells] = bestScore;
    const bool isOnly = bestCoverage == 0 && blanks.coverage == blanks.records.size();
    const bool isBetter =
        share >= half &&
        (blanks.coverage > bestCoverage ? share >= bestShare
                                        : blanks.coverage == bestCoverage && share > bestShare);
    layout.separator = best;
    const bool areTabsRepeated = best == '\t' && share >= half && blanks.coverage >= bestCoverage &&
                                 Candidate(sample, isWholeFile, layout).hasEmptyColumn();
    return blanks.coverage > 1 && (isOnly || isBetter || areTabsRepeated) ? CaseFileLayout::blanks
                                                                          : best;
}

/** Finds the parts of a table: titles, heading, units, row names. */
class TableParts
{
public:
    explicit TableParts(const Candidate& candidate)
        : records(candidate.records), separator(candidate.separator), width(widthOf(candidate)),
          numericColumns(width)
    {
        for (std::size_t column = 0; column < width; ++column) {
            numericColumns[column] = isNumericBelow(column);
        }
        hasNumericColumn =
            std::find(numericColumns.begin(), numericColumns.end(), true) != numericColumns.end();
        firstColumnNames = canNameRows(candidate);
    }

    /** Without the empty ones at the end. */
    static std::size_t cellsOf(const Record& record)
    {
        std::size_t count = record.cells.size();
        while (count > 0 && record.cells[count - 1].empty()) {
            --count;
        }
        return count;
    }

    std::size_t columns() const { return width; }

    bool hasRowNames(std::size_t heading) const
    {
        return firstColumnNames && cellsOf(records[heading]) + 1 == width;
    }

    std::optional<std::size_t> heading() const;

    /** Whether a word with a colon stands before the names: "Data: x y". */
    bool hasLabel(std::size_t record) const
    {
        Record names = records[record];
        const std::string& label = names.cells.front();
        if (cellsOf(names) != width + 1 || label.empty() || label.back() != ':') {
            return false;
        }
        names.cells.erase(names.cells.begin());
        return canBeNames(names, false);
    }

    /** A record that may be a faulty heading: of texts, some of them missing or repeated. */
    std::optional<std::size_t> faultyHeading() const;

    bool isOfNumbersAlone(std::size_t record) const
    {
        std::size_t filled = 0;
        for (const std::string& cell : records[record].cells) {
            const bool isMissing =
                CellValue::read(cell, separator != ',').kind == CellValue::Missing;
            filled += isMissing ? 0 : 1;
            if (!isMissing && !isNumber(cell, separator)) {
                return false;
            }
        }
        return filled > 0 && cellsOf(records[record]) <= width;
    }

    /** Whether it has a number where the records below have numbers. */
    bool isCase(std::size_t record) const { return hasNumberIn(records[record], 0); }

    bool readsAsUnits(std::size_t record) const;

    /** Whether it holds a text wherever the records below have numbers, in three columns at least:
     *  of a case that failed the inputs would be known. */
    bool readsAsSecondHeading(std::size_t record) const;

    bool isNumeric(std::size_t column) const { return column < width && numericColumns[column]; }

    /** Whether these cells can be the names of the columns. */
    bool canBeNames(const Record& record, bool firstIsMissing) const;

private:
    static std::size_t widthOf(const Candidate& candidate)
    {
        std::size_t width = 0;
        for (const Record& record : candidate.records) {
            if (record.cells.size() == candidate.cellCount) {
                width = std::max(width, cellsOf(record));
            }
        }
        return width == 0 ? candidate.cellCount : width;
    }

    bool isNumericBelow(std::size_t column) const
    {
        std::size_t filled = 0;
        std::size_t numbers = 0;
        for (std::size_t i = records.size() / 2; i < records.size(); ++i) {
            const std::vector<std::string>& cells = records[i].cells;
            if (column < cells.size() && cellsOf(records[i]) <= width && !cells[column].empty()) {
                ++filled;
                numbers += isNumber(cells[column], separator) ? 1 : 0;
            }
        }
        return filled > 0 && 2 * numbers >= filled;
    }

    bool hasNumberIn(const Record& record, std::size_t shift) const
    {
        for (std::size_t i = 0; i < record.cells.size() && i + shift < width; ++i) {
            if (numericColumns[i + shift] && isNumber(record.cells[i], separator)) {
                return true;
            }
        }
        return false;
    }

    bool isHeading(std::size_t record) const
    {
        const std::size_t cells = cellsOf(records[record]);
        return hasLabel(record) || (cells == width && canBeNames(records[record], false)) ||
               (firstColumnNames && cells + 1 == width && canBeNames(records[record], true));
    }

    /** Whether the first column can be row names: texts, or numbers that differ. A decimal comma
     *  between commas makes as many cells: there such numbers have to count the rows. */
    bool canNameRows(const Candidate& candidate) const
    {
        constexpr std::size_t enoughToCount = 5;
        if (width < 2 || (separator == ',' && width == 2)) {
            return false;
        }
        std::size_t rows = 0;
        bool areTexts = true;
        bool areNumbers = true;
        std::set<std::string> different;
        for (const Record& record : candidate.records) {
            if (record.cells.size() == candidate.cellCount) {
                ++rows;
                areTexts = areTexts && !isNumber(record.cells[0], separator);
                areNumbers = areNumbers && record.cells[0] == std::to_string(rows);
                different.insert(record.cells[0]);
            }
        }
        return separator == ',' ? areTexts || (areNumbers && rows >= enoughToCount)
                                : areTexts || different.size() == rows;
    }

    /** "Operator: | Smith" above a wider table. */
    bool isEntry(std::size_t record) const
    {
        const std::string& first = records[record].cells.front();
        return cellsOf(records[record]) < width && !first.empty() && first.back() == ':';
    }

    /** "Operator:" beside another text, or a record of another size than the cases. */
    bool isTitle(std::size_t record) const
    {
        const std::vector<std::string>& cells = records[record].cells;
        return cellsOf(records[record]) != width ||
               (!cells.front().empty() && cells.front().back() == ':');
    }

    const std::vector<Record>& records;
    char separator;
    std::size_t width;
    std::vector<bool> numericColumns;
    bool hasNumericColumn = false;
    bool firstColumnNames = false;
};

bool TableParts::canBeNames(const Record& record, bool firstIsMissing) const
{
    std::vector<std::string> names(record.cells.begin(), record.cells.end());
    names.resize(cellsOf(record));
    std::sort(names.begin(), names.end());
    const bool areDifferent = std::adjacent_find(names.begin(), names.end()) == names.end();
    return areDifferent && !names.empty() && !names.front().empty() &&
           !hasNumberIn(record, firstIsMissing ? 1 : 0);
}

std::optional<std::size_t> TableParts::heading() const
{
    // "Run;7" may stand above the table, too.
    constexpr std::size_t maxTitlesWithNumbers = 30;
    std::optional<std::size_t> found;
    std::size_t cases = 0;
    for (std::size_t i = 0; i < records.size() && cases <= maxTitlesWithNumbers; ++i) {
        if (isHeading(i)) {
            const bool begins = records[i].followsEmptyLine;
            const bool followsTitle =
                found && cases == 0 && (isTitle(*found) || (i > *found + 1 && isTitle(i - 1)));
            const bool isUnits = found && i == *found + 1 && readsAsUnits(i);
            if ((!found && cases == 0) || begins || hasLabel(i) || (followsTitle && !isUnits)) {
                found = i;
                cases = 0;
            }
            if (!hasNumericColumn) {
                return found;
            }
        } else if (!isEntry(i) && isCase(i) && 2 * cellsOf(records[i]) >= width) {
            if (isOfNumbersAlone(i)) {
                return found;
            }
            ++cases;
        }
    }
    return found;
}

std::optional<std::size_t> TableParts::faultyHeading() const
{
    for (std::size_t i = 0; i < records.size() && !isCase(i); ++i) {
        const std::vector<std::string>& cells = records[i].cells;
        const auto filled =
            cells.size() - static_cast<std::size_t>(std::count(cells.begin(), cells.end(), ""));
        if (cells.size() >= width && 2 * filled >= width) {
            return i;
        }
    }
    return std::nullopt;
}

bool TableParts::readsAsUnits(std::size_t record) const
{
    const std::vector<std::string>& cells = records[record].cells;
    std::size_t filled = 0;
    std::size_t units = 0;
    bool isAboveNumbers = false;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (cells[i].empty() || cells[i] == "-" || cells[i] == "--" || cells[i] == "1") {
            continue;
        }
        ++filled;
        const bool isUnit = isUnitText(cells[i]);
        units += isUnit ? 1 : 0;
        isAboveNumbers = isAboveNumbers || (isUnit && i < width && numericColumns[i]);
        if (isNumber(cells[i], separator)) {
            return false;
        }
    }
    return isAboveNumbers && 2 * units >= filled && cellsOf(records[record]) <= width;
}

bool TableParts::readsAsSecondHeading(std::size_t record) const
{
    const std::vector<std::string>& cells = records[record].cells;
    std::size_t texts = 0;
    for (std::size_t i = 0; i < width; ++i) {
        if (!numericColumns[i]) {
            continue;
        }
        if (i >= cells.size() || CellValue::read(cells[i], true).kind != CellValue::Text) {
            return false;
        }
        ++texts;
    }
    return texts > 2;
}

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

/** A comment line that may be the heading: `text` begins behind the mark. */
struct Comment
{
    std::size_t position = 0;
    std::size_t line = 1;
};

/** The comment lines between the end of the record before and this one. */
std::vector<Comment> commentsAbove(std::string_view sample, const Record& record,
                                   const CaseFileLayout& layout)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::vector<Comment> comments;
    std::size_t position = record.begin;
    position += sample.substr(position, byteOrderMark.size()) == byteOrderMark ? 3 : 0;
    for (std::size_t number = record.beginLine; number < record.line; ++number) {
        const Line line = lineAt(sample, position);
        const std::string_view text = trimmedText(line.text);
        for (const std::string& mark : layout.commentMarks) {
            if (text.substr(0, mark.size()) != mark) {
                continue;
            }
            // "%RH" and "#" alone are names, "#run" and "# run" are one behind a mark.
            const std::string_view behind = text.substr(mark.size());
            const bool isBlankBehind = behind != trimmedText(behind);
            const bool belongsToName =
                (mark == "%" && !isBlankBehind) ||
                (!trimmedText(behind).empty() && trimmedText(behind).front() == layout.separator);
            comments.push_back({static_cast<std::size_t>(text.data() - sample.data()) +
                                    (belongsToName ? 0 : mark.size()),
                                number});
            break;
        }
        position = line.behind;
    }
    return comments;
}

/** The first record from a comment's text on. */
std::optional<Record> recordAt(std::string_view sample, const Comment& comment,
                               CaseFileLayout layout)
{
    layout.tableBegin = 0;
    layout.commentMarks.clear();
    const std::vector<Record> records =
        recordsOf(lineAt(sample, comment.position).text, true, layout);
    return records.empty() ? std::nullopt : std::make_optional(records.front());
}

std::vector<std::string> unitsOf(const Record& record)
{
    std::vector<std::string> units;
    for (const std::string& cell : record.cells) {
        const bool saysNothing = cell == "-" || cell == "--" || cell == "1";
        units.push_back(saysNothing ? std::string() : unitWithoutBrackets(cell));
    }
    return units;
}

/** Makes the comment line above a record the heading, if it can be. @return whether it is. */
bool takeHeadingFromComment(std::string_view sample, const Record& record, const TableParts& parts,
                            CaseFileLayout& layout)
{
    const std::vector<Comment> comments = commentsAbove(sample, record, layout);
    const auto namesAt = [&](std::size_t fromLast) -> std::optional<Record> {
        if (fromLast >= comments.size()) {
            return std::nullopt;
        }
        auto names = recordAt(sample, comments[comments.size() - 1 - fromLast], layout);
        const bool fits = names && names->cells.size() == parts.columns();
        return fits ? names : std::nullopt;
    };
    std::size_t fromLast = 0;
    std::optional<Record> heading = namesAt(0);
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
    for (Line line = lineAt(sample, layout.tableBegin); line.begin < sample.size();
         line = lineAt(sample, line.behind)) {
        const std::string_view text = trimmedText(line.text);
        const bool isMarked = std::any_of(
            layout.commentMarks.begin(), layout.commentMarks.end(), [&](const std::string& mark) {
                return !mark.empty() && text.substr(0, mark.size()) == mark;
            });
        if (isMarked && !CellValue::beginsWithError(text)) {
            likeRows += rows > 0 && shapeOf(text) == shape ? 1 : 0;
        } else if (!text.empty()) {
            ++rows;
            shape = shapeOf(text);
        }
    }
    return likeRows <= rows;
}

/** What separates thousands in all numbers that can only be read so; NUL where they differ. */
char thousandsSeparator(const std::vector<Record>& records, const TableParts& parts,
                        const ReadingChoices& choices, char separator)
{
    char found = '\0';
    for (const Record& record : records) {
        for (std::size_t i = 0; i < record.cells.size(); ++i) {
            CellValue::DecimalMark mark = CellValue::NoMark;
            const auto [number, unit] = numberAndUnit(record.cells[i]);
            const char own = parts.isNumeric(i) || !unit.empty()
                                 ? CellValue::thousandsSeparator(number, mark)
                                 : '\0';
            if (own == '\0') {
                continue;
            }
            const bool hasComma = mark == CellValue::Comma || own == '.';
            const bool hasPoint = mark == CellValue::Point || own == ',';
            const bool isRefused = (hasComma && separator == ',') ||
                                   (hasComma && choices.decimalMark == CellValue::Point) ||
                                   (hasPoint && choices.decimalMark == CellValue::Comma);
            if (isRefused || (found != '\0' && own != found)) {
                return '\0';
            }
            found = own;
        }
    }
    return found;
}

/** What the commas of quoted cells are, where commas separate the cells: between thousands if all
 *  can be that, else decimal marks if no number has a point. */
void takeQuotedCommas(const std::vector<Record>& records, const TableParts& parts,
                      const ReadingChoices& choices, CaseFileLayout& layout)
{
    bool hasPoint = false;
    bool hasComma = false;
    bool areThousands = choices.decimalMark != CellValue::Comma;
    for (const Record& record : records) {
        for (std::size_t i = 0; i < record.cells.size(); ++i) {
            const std::string& cell = record.cells[i];
            const CellValue value = CellValue::read(cell, true);
            if (!parts.isNumeric(i) || value.kind != CellValue::Number) {
                continue;
            }
            hasPoint = hasPoint || value.mark == CellValue::Point;
            if (value.mark == CellValue::Comma) {
                hasComma = true;
                areThousands = areThousands && cell[cell.find_first_not_of("+-")] != '0' &&
                               CellValue::read(cell, false, ',').kind == CellValue::Number;
            }
        }
    }
    if (hasComma && areThousands) {
        layout.thousandsSeparator = ',';
    } else if (hasComma && !hasPoint) {
        layout.hasDecimalComma = true;
    }
}

void takeParts(std::string_view sample, bool isWholeFile, const ReadingChoices& choices,
               CaseFileLayout& layout)
{
    const Candidate candidate(sample, isWholeFile, layout);
    const std::vector<Record>& records = candidate.records;
    if (records.empty()) {
        return;
    }
    const TableParts parts(candidate);
    layout.columns = parts.columns();
    layout.thousandsSeparator = choices.thousandsSeparator
                                    ? *choices.thousandsSeparator
                                    : thousandsSeparator(records, parts, choices, layout.separator);

    if (layout.separator == ',' && layout.thousandsSeparator == '\0' &&
        !choices.thousandsSeparator && choices.decimalMark != CellValue::Point) {
        takeQuotedCommas(records, parts, choices, layout);
    }

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
                      [](const Record& record) { return TableParts::cellsOf(record) > 0; }));
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

/** The beginning of a text, without lines that are no part of the table and fill most of it. */
class Sample
{
public:
    using Read = std::function<std::size_t(char* buffer, std::size_t capacity)>;

    Sample(const Read& reader, std::size_t wantedSize, const ReadingChoices& wanted)
        : read(reader), size(wantedSize), choices(wanted)
    {
        const CaseFileLayout plain;
        marks = choices.commentMark ? std::vector<std::string>{*choices.commentMark}
                                    : plain.commentMarks;
        do {
            fill();
        } while (!isWhole && removeLines());
    }

    CaseFileLayout layout() const
    {
        ReadingChoices rest = choices;
        if (rest.skippedLines) {
            *rest.skippedLines -= std::min(removedLines, *rest.skippedLines);
        }
        CaseFileLayout found = recogniseLayout(text, isWhole, rest);
        if (found.tableBegin >= firstLine().behind && removedLines > 0) {
            found.tableBegin += removedBytes;
            found.tableLine += removedLines;
            found.titleLines += removedTitles;
            found.commentLines += choices.skippedLines ? 0 : removedComments;
        }
        return found;
    }

private:
    /** It stays: it may declare the separator. */
    Line firstLine() const { return lineAt(text, 0); }

    void fill()
    {
        std::size_t filled = text.size();
        text.resize(size);
        while (filled < size && !isWhole) {
            const std::size_t count = read(text.data() + filled, size - filled);
            isWhole = count == 0;
            filled += count;
        }
        text.resize(filled);
    }

    bool isComment(const Line& line) const
    {
        const std::string_view trimmed = trimmedText(line.text);
        const auto begins = [&](const std::string& mark) {
            return !mark.empty() && trimmed.substr(0, mark.size()) == mark;
        };
        return std::any_of(marks.begin(), marks.end(), begins) &&
               !CellValue::beginsWithError(trimmed);
    }

    /** @return whether they were most of the sample. */
    bool removeLines()
    {
        // The last comment lines may be the heading and its units.
        const std::size_t keptComments = choices.skippedLines ? 0 : 2;
        std::vector<Line> lines;
        Line line = lineAt(text, firstLine().behind);
        while (line.behind < text.size() && canGo(line, lines.size())) {
            lines.push_back(line);
            line = lineAt(text, line.behind);
        }
        lines.resize(lines.size() - std::min(keptComments, lines.size()));
        if (lines.empty() || lines.back().behind - lines.front().begin < size / 2) {
            return false;
        }
        for (const Line& removed : lines) {
            const bool isEmpty = trimmedText(removed.text).empty();
            removedTitles += choices.skippedLines && !isEmpty ? 1 : 0;
            removedComments += isEmpty ? 0 : 1;
        }
        const std::size_t bytes = lines.back().behind - lines.front().begin;
        removedLines += lines.size();
        removedBytes += bytes;
        text.erase(lines.front().begin, bytes);
        return true;
    }

    bool canGo(const Line& line, std::size_t linesBefore) const
    {
        if (choices.skippedLines) {
            return removedLines + linesBefore + 1 < *choices.skippedLines;
        }
        return isComment(firstLine()) && (isComment(line) || trimmedText(line.text).empty());
    }

    const Read& read;
    std::size_t size;
    const ReadingChoices& choices;
    std::vector<std::string> marks;
    std::string text;
    bool isWhole = false;
    std::size_t removedBytes = 0;
    std::size_t removedLines = 0;
    std::size_t removedTitles = 0;
    std::size_t removedComments = 0;
};
} // namespace

CaseFileLayout recogniseLayout(std::string_view sample, bool isWholeFile,
                               const ReadingChoices& choices)
{
    CaseFileLayout layout;
    if (choices.commentMark) {
        layout.commentMarks.assign(choices.commentMark->empty() ? 0 : 1, *choices.commentMark);
    }
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    const std::size_t begin =
        sample.substr(0, byteOrderMark.size()) == byteOrderMark ? byteOrderMark.size() : 0;
    const auto skipLine = [&](const Line& line) {
        layout.tableBegin = line.behind;
        ++layout.tableLine;
    };
    const Line firstLine = lineAt(sample, begin);
    const std::optional<char> declared = declaredSeparator(firstLine.text);
    if (declared) {
        skipLine(firstLine);
    }
    for (std::size_t i = 0; i < choices.skippedLines.value_or(0); ++i) {
        const Line line = lineAt(sample, layout.tableBegin);
        layout.titleLines += trimmedText(line.text).empty() ? 0 : 1;
        skipLine(line);
    }
    if (!choices.commentMark && !hasComments(sample, layout)) {
        layout.commentMarks.clear();
    }
    layout.separator = choices.separator ? *choices.separator
                       : declared        ? *declared
                                         : recogniseSeparator(sample, isWholeFile, layout);
    takeParts(sample, isWholeFile, choices, layout);
    return layout;
}

CaseFileLayout
recogniseLayout(const std::function<std::size_t(char* buffer, std::size_t capacity)>& read,
                std::size_t sampleSize, const ReadingChoices& choices)
{
    return Sample(read, sampleSize, choices).layout();
}
