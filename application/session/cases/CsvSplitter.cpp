#include "session/cases/CsvSplitter.h"

#include "session/text/AsciiText.h"
#include "session/text/CellValue.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {
std::string_view textBetween(const char* first, const char* last)
{
    return {first, static_cast<std::size_t>(last - first)};
}

/** What lines below headings are drawn with. */
constexpr std::string_view ruleCharacters = "-=+|:_* \t";

/** Whether the text begins with such a line. Three in a row: "-" alone is a missing cell. */
bool isRule(std::string_view text)
{
    std::size_t repeated = 0;
    bool hasThree = false;
    for (std::size_t i = 0; i < text.size() && text[i] != '\n' && text[i] != '\r'; ++i) {
        if (ruleCharacters.find(text[i]) == std::string_view::npos) {
            return false;
        }
        const bool isLine = text[i] == '-' || text[i] == '=' || text[i] == '_' || text[i] == '*';
        repeated = isLine && i > 0 && text[i] == text[i - 1] ? repeated + 1 : isLine ? 1 : 0;
        hasThree = hasThree || repeated == 3;
    }
    return hasThree;
}

/** LF, CRLF and CR each end one line. */
std::size_t lineEndsIn(std::string_view text)
{
    std::size_t count = 0;
    char previous = '\0';
    for (const char character : text) {
        const bool isSecondOfPair = character == '\n' && previous == '\r';
        count += (character == '\n' || character == '\r') && !isSecondOfPair ? 1 : 0;
        previous = character;
    }
    return count;
}
} // namespace

CsvSplitter::CsvSplitter(Read reader, const CaseFileLayout& layout, std::size_t bufferSize)
    : read(std::move(reader)), separator(layout.separator), commentMarks(layout.commentMarks),
      beginsWithHeading(layout.isHeadingComment), unread(layout.tableBegin),
      buffer(std::max(bufferSize, utf8ByteOrderMark.size()) + 1), recordLine(layout.tableLine),
      nextLine(layout.tableLine)
{
    for (const char character : {separator, '\n', '\r'}) {
        isCellEnd[static_cast<unsigned char>(character)] = true;
    }
    if (separator == CaseFileLayout::blanks) {
        isCellEnd[static_cast<unsigned char>('\t')] = true;
    }
    for (const std::string& mark : commentMarks) {
        beginsComment[static_cast<unsigned char>(mark.front())] = true;
    }
    for (const char character : ruleCharacters) {
        beginsComment[static_cast<unsigned char>(character)] =
            beginsComment[static_cast<unsigned char>(character)] ||
            (!commentMarks.empty() && character != ' ' && character != '\t');
    }
}

bool CsvSplitter::next()
{
    for (;;) {
        recordLine = nextLine;
        const char* const recordEnd = begin == end ? nullptr : splitRecord();
        if (recordEnd != nullptr) {
            begin = static_cast<std::size_t>(recordEnd - buffer.data());
            nextLine += 1 + lineEndsInCells;
            skippedComments += isCommentLine ? 1 : 0;
            if (!cellTexts.empty()) {
                beginsWithHeading = false;
                joinDoubledQuotes();
                return true;
            }
        } else if (isInputRead) {
            isUnclosed = begin != end;
            return false;
        } else {
            refill();
        }
    }
}

/** @return the beginning of the next record; null if the buffer does not hold all of this one. */
const char* CsvSplitter::splitRecord()
{
    cellTexts.clear();
    cellsWithDoubledQuotes.clear();
    lineEndsInCells = 0;

    const char* at = skipBlanks(buffer.data() + begin);
    // At the beginning, and further down in a file that another one was appended to.
    while (beginsWith(textBetween(at, bytesEnd()), utf8ByteOrderMark)) {
        at = skipBlanks(at + utf8ByteOrderMark.size());
    }
    isCommentLine =
        !beginsWithHeading && beginsComment[static_cast<unsigned char>(*at)] && isComment(at);
    at = isCommentLine                         ? skipLine(at)
         : separator == CaseFileLayout::blanks ? splitBlankSeparatedCells(at)
                                               : splitCells(at);
    return at == nullptr ? nullptr : afterLineEnd(at);
}

/** @return the end of the line; null if the buffer does not hold all of the record. */
const char* CsvSplitter::splitCells(const char* at)
{
    const bool isBlankLine = *at != separator && endsCell(*at);
    while (!isBlankLine) {
        at = *at == '"' ? splitQuotedCell(at) : splitPlainCell(at);
        if (at == nullptr || *at != separator) {
            break;
        }
        at = skipBlanks(at + 1);
    }
    return at;
}

/** The same where blanks separate. */
const char* CsvSplitter::splitBlankSeparatedCells(const char* at)
{
    while (at != nullptr && !endsLine(*at)) {
        at = *at == '"' ? splitQuotedCell(at) : splitPlainCell(at);
        at = at == nullptr ? nullptr : skipBlanks(at);
    }
    return at;
}

bool CsvSplitter::isComment(const char* at) const
{
    const std::string_view line = textBetween(at, bytesEnd());
    const bool hasMark =
        std::any_of(commentMarks.begin(), commentMarks.end(),
                    [&](const std::string& mark) { return beginsWith(line, mark); });
    return (hasMark && !CellValue::beginsWithError(line)) || isRule(line);
}

const char* CsvSplitter::skipLine(const char* at) const
{
    while (!endsLine(*at)) {
        ++at;
    }
    return at;
}

/** @return the character that ends the cell; null if the buffer does not hold all of the cell. */
const char* CsvSplitter::splitQuotedCell(const char* quote)
{
    const char* const first = quote + 1;
    bool hasDoubledQuotes = false;
    for (const char* at = first;; ++at) {
        at = static_cast<const char*>(
            std::memchr(at, '"', static_cast<std::size_t>(bytesEnd() - at)));
        if (at == nullptr) {
            return nullptr;
        }
        if (at[1] == '"') {
            hasDoubledQuotes = true;
            ++at;
            continue;
        }
        const char* const cellEnd =
            separator == CaseFileLayout::blanks ? at + 1 : skipBlanks(at + 1);
        if (cellEnd == bytesEnd() && !isInputRead) {
            return nullptr;
        }
        if (endsCell(*cellEnd)) {
            if (hasDoubledQuotes) {
                cellsWithDoubledQuotes.push_back(cellTexts.size());
            }
            cellTexts.push_back(textBetween(first, at));
            lineEndsInCells += lineEndsIn(cellTexts.back());
            return cellEnd;
        }
    }
}

/** @return the character that ends the cell. */
const char* CsvSplitter::splitPlainCell(const char* first)
{
    const char* cellEnd = first;
    while (!endsCell(*cellEnd)) {
        ++cellEnd;
    }
    const char* last = cellEnd;
    while (last != first && isBlank(last[-1])) {
        --last;
    }
    // It keeps spreadsheets from taking the text for a formula, also in what is written of it.
    const bool hasGuard = (*first == '=' || *first == '@') && first != buffer.data() &&
                          first[-1] == '\t' && separator != '\t' &&
                          separator != CaseFileLayout::blanks;
    cellTexts.push_back(textBetween(hasGuard ? first - 1 : first, last));
    return cellEnd;
}

/** @return null if the line may go on, or LF follow CR, after the bytes of the buffer. */
const char* CsvSplitter::afterLineEnd(const char* lineEnd) const
{
    // After a CR that is the last byte, the line feed that closes the buffer makes a pair.
    const bool isPair = *lineEnd == '\r' && lineEnd[1] == '\n';
    const char* const next = lineEnd + (isPair ? 2 : 1);
    if (next <= bytesEnd()) {
        return next;
    }
    return isInputRead ? bytesEnd() : nullptr;
}

const char* CsvSplitter::skipBlanks(const char* at) const
{
    while (isBlank(*at)) {
        ++at;
    }
    return at;
}

bool CsvSplitter::isBlank(char character) const
{
    const bool separates = character == separator && separator != CaseFileLayout::blanks;
    return (character == ' ' || character == '\t') && !separates;
}

bool CsvSplitter::endsCell(char character) const
{
    return isCellEnd[static_cast<unsigned char>(character)];
}

/** Reads after the record that has begun, which moves to the front of the buffer. */
void CsvSplitter::refill()
{
    const std::size_t rest = end - begin;
    std::memmove(buffer.data(), buffer.data() + begin, rest);
    if (rest > buffer.size() / 2) {
        // Long records are split again after each refill: doubling keeps the sum linear.
        buffer.resize(2 * buffer.size());
    }
    begin = 0;
    end = rest;
    skipUnread();
    while (!isInputRead && end + 1 < buffer.size()) {
        const std::size_t count = read(buffer.data() + end, buffer.size() - end - 1);
        isInputRead = count == 0;
        end += count;
        bytesRead += count;
    }
    buffer[end] = '\n';
}

/** Reads what comes before the table. */
void CsvSplitter::skipUnread()
{
    while (unread > 0) {
        const std::size_t count = read(buffer.data(), std::min(unread, buffer.size()));
        unread -= count == 0 ? unread : count;
        bytesRead += count;
    }
}

/** In the buffer, and so not before the record is complete: it may have to be split again. */
void CsvSplitter::joinDoubledQuotes()
{
    for (const std::size_t cell : cellsWithDoubledQuotes) {
        std::string_view& text = cellTexts[cell];
        char* const first = buffer.data() + (text.data() - buffer.data());
        char* last = first;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const char character = text[i];
            *last++ = character;
            i += character == '"' && i + 1 < text.size() && text[i + 1] == '"' ? 1 : 0;
        }
        text = textBetween(first, last);
    }
}
