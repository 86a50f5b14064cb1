#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

/**
 * A spreadsheet file that is being written: cells by sheet, row and column, from 0. The same cells
 * give the same bytes. It grows in a folder of its own for temporary files, which goes with it.
 * As long as it exists the thread's locale is "C".
 */
class WorkbookFile
{
public:
    static constexpr std::size_t maxColumns = 16384;
    static constexpr std::size_t maxRows = 1048576;
    static constexpr std::size_t maxFormulaLength = 8192;

    enum Style
    {
        Plain,
        Heading,
        Typed, ///< for the user to change
        Quiet, ///< a step on the way
        StyleCount
    };

    struct Cell
    {
        std::size_t sheet = 0;
        std::size_t row = 0;
        std::size_t column = 0;
    };

    /** @throw SurrogateModelInterface::Error if no temporary file can be made. */
    explicit WorkbookFile(const std::vector<std::string>& sheets);
    ~WorkbookFile();

    WorkbookFile(const WorkbookFile&) = delete;
    WorkbookFile& operator=(const WorkbookFile&) = delete;

    /** A text beyond 32767 characters, the most that a cell can hold, is cut. */
    void text(const Cell& cell, const std::string& text, Style style = Plain);

    /** Exactly this number, whatever digits the file format keeps. */
    void number(const Cell& cell, double value, Style style = Plain);

    /**
     * @param formula without the equals sign.
     * @param value   what shows before it is computed.
     * @param isArray whether functions of one number are applied to areas number by number.
     * @throw SurrogateModelInterface::Error if it is too long.
     */
    void formula(const Cell& cell, const std::string& formula, double value, Style style = Plain,
                 bool isArray = false);

    /** A formula that gives "holds" or "FAILED", the latter in red. */
    void verdict(const Cell& cell, const std::string& formula);

    /** Gives an area a name that formulas can use. */
    void name(const std::string& name, const std::string& area);

    void columnWidths(std::size_t sheet, std::size_t firstColumn, std::size_t lastColumn,
                      double width);

    /** Closes the file. @throw SurrogateModelInterface::Error if it could not be written. */
    std::string bytes();

    /** "A", "Z", "AA", ... */
    static std::string columnName(std::size_t column);

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
