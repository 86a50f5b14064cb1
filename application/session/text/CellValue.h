#pragma once

#include <surrogate_session/Export.h>

#include <string_view>

/** The value that the text of one cell of a case file stands for. */
struct SURROGATE_SESSION_EXPORT CellValue
{
    enum Kind
    {
        Missing,
        Number,
        Text
    };
    enum DecimalMark
    {
        NoMark,
        Point,
        Comma
    };

    Kind kind = Missing;
    double number = 0.0;
    DecimalMark mark = NoMark;

    /**
     * Reads a cell; blanks around it are ignored.
     *
     * Missing: the empty cell, NA, N/A, n.a., NaN, null, none, the errors of spreadsheets (#N/A,
     * #DIV/0!, #VALUE!, #NUM!, #REF!, #NAME?, #NULL!), all in any case, ? and - and -- and a point,
     * and dashes. A number is written as in the C locale, whatever the locale of the process, with
     * an optional sign, also the minus sign of typesetting; the exponent may be Fortran's D. "inf"
     * is infinite, and so is a number too large for a double: its case is invalid, its column still
     * numeric. A number too small for a double is 0. Everything else is text.
     * @param decimalComma whether a comma may stand for the decimal point.
     * @param thousands    what may separate groups of three digits: a comma, a point, an
     * apostrophe, or ' ' for blanks of any kind; NUL: nothing.
     */
    static CellValue read(std::string_view text, bool decimalComma, char thousands = '\0');

    /** The character that separates groups of three digits in a number that cannot mean anything
     *  else: 1,234.5 and 1.234.567 and 1 234,5 are, 1,234 is not; NUL for any other text.
     *  @param decimalMark receives the mark of its fraction, if it has one. */
    static char thousandsSeparator(std::string_view text, DecimalMark& decimalMark);

    /** Whether a text begins with an error of a spreadsheet, such as #N/A. */
    static bool beginsWithError(std::string_view text);
};
