#pragma once

#include <mirel_fitting/numerics/NumberText.h>

#include <string>

/* How numbers and names are written into files of other languages, whatever the locale. */

/** The shortest literal of C and Python that reads back as the same double and is no integer: 42.0,
 *  1e+20. */
std::string realNumber(double value);

/**
 * A constant for a spreadsheet's formula. Spreadsheets may keep 15 digits of a constant: what needs
 * more is written as a sum of two, (0.1+2E-17), which gives the same double again.
 */
std::string formulaNumber(double value);

/** " + 1.5" or " - 1.5", the number as `text` writes its magnitude. */
std::string signedNumber(double value, std::string (*text)(double));

/**
 * A name for the comment of a C file, in quotes and on one line: nothing in it ends a comment,
 * begins one, is a trigraph, or turns the direction in which the line is read.
 */
std::string commentName(const std::string& name);

/** A name as a string literal of Python, of ASCII characters only. */
std::string pythonName(const std::string& name);

/** A name for a text: one line. */
std::string lineName(const std::string& name);
