#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

/**
 * Splits the bytes of a separated-values file into records and cells, block by block.
 *
 * Blanks around a cell and the quotes around a quoted one are taken off, doubled quotes inside are
 * single again; a quoted cell may hold separators and line ends. Records end with LF, CRLF or CR;
 * lines without a cell are skipped. A quote inside a cell that does not begin with one is a
 * character like any other (5" pipe).
 *
 * Lines that are plain records (PlainCells), which are most, are split where they stand in the
 * block; libcsv reads the others byte by byte.
 */
class CsvSplitter
{
public:
    /** Receives the cells; what it throws comes out of parse() or finish(). */
    class Sink
    {
    public:
        virtual ~Sink() = default;

        /** @param line the physical line, from 1, in which the record of this cell begins. */
        virtual void cell(std::string_view text, std::size_t line) = 0;
        virtual void endRecord(std::size_t line) = 0;

        /**
         * A record that is one plain line (PlainCells), as it stands in the file. The base class
         * splits it into calls of cell() and endRecord(); others may know a shorter way to the same
         * end.
         */
        virtual void plainRecord(std::string_view text, char separator, std::size_t line);
    };

    /** @param sink borrowed as long as this object lives. */
    CsvSplitter(char separator, Sink& sink);
    ~CsvSplitter();

    void parse(const char* bytes, std::size_t count);

    /**
     * Ends the last record, with or without a line end.
     * @return whether the last quoted cell was closed; if not, the sink has not got it.
     */
    bool finish();

    /** The line in which the record that is being read begins. */
    std::size_t recordLine() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
