#include "session/cases/SampleRecords.h"

#include "session/cases/CsvSplitter.h"
#include "session/text/CellValue.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace {
/** More of them do not change what most of them say. */
constexpr std::size_t maxRecords = 500;

std::size_t behindLines(std::string_view sample, std::size_t begin, std::size_t count)
{
    for (; count > 0; --count) {
        begin = SampleLine::at(sample, begin).next;
    }
    return begin;
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

/** Appends the records of a layout's table. @return what follows the last one. */
SampleRecord appendRecords(CsvSplitter& splitter, const CaseFileLayout& layout,
                           std::size_t commentsAbove, std::vector<SampleRecord>& records)
{
    SampleRecord record;
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
        record = SampleRecord();
        record.begin = splitter.bytesSplit();
        record.beginLine = splitter.nextLineNumber();
        record.comments = comments;
    }
    return record;
}

/** @param end becomes the beginning of a record with a quote that is never closed. */
std::vector<SampleRecord> recordsOf(std::string_view sample, bool isWholeFile,
                                    CaseFileLayout layout, std::size_t& end)
{
    constexpr int maxOpenTitles = 30;
    std::vector<SampleRecord> records;
    std::size_t commentsAbove = 0;
    for (int openTitles = 0;; ++openTitles) {
        CsvSplitter splitter = splitterOf(sample, layout);
        const SampleRecord rest = appendRecords(splitter, layout, commentsAbove, records);
        if (!splitter.hasUnclosedQuote() || openTitles == maxOpenTitles) {
            break;
        }
        if (2 * rest.begin >= sample.size()) {
            end = rest.begin;
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

/** How many lines hold so many separators, inside quotes or not. */
std::size_t linesWith(char separator, std::size_t separators, std::string_view text)
{
    std::size_t lines = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        const SampleLine line = SampleLine::at(text, begin);
        const auto count = std::count(line.text.begin(), line.text.end(), separator);
        lines += static_cast<std::size_t>(count) == separators ? 1 : 0;
        begin = line.next;
    }
    return lines;
}
} // namespace

SampleLine SampleLine::at(std::string_view sample, std::size_t begin)
{
    const std::size_t end = std::min(sample.find_first_of("\r\n", begin), sample.size());
    const bool isPair = sample.substr(end, 2) == "\r\n";
    return {begin, std::min(end + (isPair ? 2 : 1), sample.size()),
            sample.substr(begin, end - begin)};
}

std::size_t SampleRecord::filledCells() const
{
    std::size_t count = cells.size();
    while (count > 0 && cells[count - 1].empty()) {
        --count;
    }
    return count;
}

SampleRecords::SampleRecords(std::string_view sample, bool isWholeFile,
                             const CaseFileLayout& layout)
    : separator(layout.separator)
{
    std::size_t end = sample.size();
    records = recordsOf(sample, isWholeFile, layout, end);
    std::map<std::size_t, std::size_t> recordsBySize;
    for (const SampleRecord& record : records) {
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
    coverage += cellCount > 1 ? linesWith(separator, cellCount - 1, sample.substr(end)) : 0;
}

bool SampleRecords::isNumber(const std::string& cell) const
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

/** Of the cells of records that have cellCount cells; those that are empty do not count. */
double SampleRecords::shareOfNumbers() const
{
    std::size_t filled = 0;
    std::size_t numbers = 0;
    for (const SampleRecord& record : records) {
        for (const std::string& cell : record.cells) {
            const bool counts = record.cells.size() == cellCount && !cell.empty();
            filled += counts ? 1 : 0;
            numbers += counts && isNumber(cell) ? 1 : 0;
        }
    }
    return filled == 0 ? 0.0 : static_cast<double>(numbers) / static_cast<double>(filled);
}

/** Whether a column holds nothing, its heading included. */
bool SampleRecords::hasEmptyColumn() const
{
    for (std::size_t column = 0; column < cellCount; ++column) {
        if (std::all_of(records.begin(), records.end(), [&](const SampleRecord& record) {
                return column >= record.cells.size() || record.cells[column].empty();
            })) {
            return true;
        }
    }
    return false;
}

char SampleRecords::recognisedSeparator(std::string_view sample, bool isWholeFile,
                                        CaseFileLayout layout)
{
    char best = ',';
    std::tuple<std::size_t, double, std::size_t> bestScore(0, 0.0, 0);
    for (const char separator : {'\t', ';', ',', '|'}) {
        layout.separator = separator;
        const SampleRecords candidate(sample, isWholeFile, layout);
        const std::tuple<std::size_t, double, std::size_t> score(
            candidate.coverage, candidate.coverage == 0 ? 0.0 : candidate.shareOfNumbers(),
            candidate.cellCount);
        if (candidate.coverage > 0 && score > bestScore) {
            best = separator;
            bestScore = score;
        }
    }
    layout.separator = CaseFileLayout::blanks;
    const SampleRecords blanks(sample, isWholeFile, layout);
    constexpr double half = 0.5;
    const double share = blanks.shareOfNumbers();
    const auto [bestCoverage, bestShare, bestCells] = bestScore;
    layout.separator = best;
    const SampleRecords chosen(sample, isWholeFile, layout);
    // Blanks in titles must not outweigh tabs that split the second half of the sample alike.
    const bool areTabsEnough =
        best == '\t' && bestCells == blanks.cellCount &&
        std::all_of(chosen.records.begin() + static_cast<std::ptrdiff_t>(chosen.records.size() / 2),
                    chosen.records.end(), [cells = bestCells](const SampleRecord& record) {
                        return record.cells.size() == cells;
                    });
    const bool isOnly = bestCoverage == 0 && blanks.coverage == blanks.records.size();
    const bool isBetter =
        share >= half && !areTabsEnough &&
        (blanks.coverage > bestCoverage ? share >= bestShare
                                        : blanks.coverage == bestCoverage && share > bestShare);
    const bool areTabsRepeated =
        best == '\t' && share >= half && blanks.coverage >= bestCoverage && chosen.hasEmptyColumn();
    return blanks.coverage > 1 && (isOnly || isBetter || areTabsRepeated) ? CaseFileLayout::blanks
                                                                          : best;
}
