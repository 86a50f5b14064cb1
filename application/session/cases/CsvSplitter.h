#pragma once

#include <session/cases/CaseFileLayout.h>

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/**
 * Splits separated values into records of cells, one record at a time, from the beginning of a
 * layout's table on. Of the layout it knows separator, comment marks and beginning.
 *
 * Blanks around a cell and the quotes around a quoted one are removed, doubled quotes inside become
 * single; a quoted cell may hold separators and line ends. A quoted cell ends at the quote that is
 * followed, perhaps after blanks, by a separator or a line end; every other quote is a character
 * (5" pipe). Records end with LF, CRLF or CR; lines without a cell and comment lines are skipped,
 * but one that begins with an error of a spreadsheet (#N/A) is none. A byte order mark at the
 * beginning is not part of the first cell. Where blanks separate, a quoted cell ends at the quote
 * that is followed by one or by a line end, and no cell is empty unless it is quoted.
 */
class CsvSplitter
{
public:
    /** Fills a buffer with the next bytes, at most `capacity`; returns how many, 0 at the end. */
    using Read = std::function<std::size_t(char* buffer, std::size_t capacity)>;

    /**
     * @param read       what it throws comes out of next().
     * @param bufferSize in bytes; the buffer grows for a record that does not fit.
     */
    CsvSplitter(Read read, const CaseFileLayout& layout, std::size_t bufferSize = 1 << 18);

    /** Reads the next record. @return false at the end, and for an unclosed quote. */
    bool next();

    /** The cells of the record, at least one; valid until the next call of next(). */
    const std::vector<std::string_view>& cells() const { return cellTexts; }

    /** The physical line, from 1, in which the record begins. */
    std::size_t line() const { return recordLine; }

    /** Whether next() met a quoted cell that is never closed; its record begins in line(). */
    bool hasUnclosedQuote() const { return isUnclosed; }

    /** The physical line after the record. */
    std::size_t nextLineNumber() const { return nextLine; }

    /** How many comment lines were skipped so far. */
    std::size_t commentLines() const { return skippedComments; }

    /** The size of the input up to the end of the record, in bytes. */
    std::size_t bytesSplit() const { return bytesRead - (end - begin); }

private:
    const char* splitRecord();
    const char* splitCells(const char* at);
    const char* splitBlankSeparatedCells(const char* at);
    bool isComment(const char* at) const;
    const char* skipLine(const char* at) const;
    const char* splitQuotedCell(const char* quote);
    const char* splitPlainCell(const char* first);
    const char* afterLineEnd(const char* lineEnd) const;
    const char* skipBlanks(const char* at) const;
    bool isBlank(char character) const;
    bool endsCell(char character) const;
    static bool endsLine(char character) { return character == '\n' || character == '\r'; }
    const char* bytesEnd() const { return buffer.data() + end; }
    void refill();
    void skipUnread();
    void joinDoubledQuotes();

    Read read;
    char separator;
    std::array<bool, 256> isCellEnd{}; ///< by character: the separator and line ends
    std::vector<std::string> commentMarks;
    std::array<bool, 256> beginsComment{}; ///< by character
    bool beginsWithHeading; ///< whether the next record is the heading, whatever it begins with
    std::size_t unread;     ///< bytes before the table that are still to be read

    // The bytes from `begin` to `end` are still to be split. A line feed after them stops the
    // search for the end of a cell.
    std::vector<char> buffer;
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t bytesRead = 0;
    bool isInputRead = false; ///< whether the buffer holds the end of the input

    std::vector<std::string_view> cellTexts;
    std::vector<std::size_t> cellsWithDoubledQuotes;
    std::size_t lineEndsInCells = 0;
    std::size_t recordLine;
    std::size_t nextLine;
    std::size_t skippedComments = 0;
    bool isUnclosed = false;
    bool isCommentLine = false;
};
