#pragma once

#include <string>

/** What a name says of the numbers of its column. */
enum class NameOf
{
    Blocks,
    Errors,      ///< of the output, or the output itself
    FigureOfFit, ///< "RESI1"
    KindOfPoint, ///< of a design, "PtType"
    Numbering,   ///< of the cases, "Run No."
    Output,      ///< "y2", "Response 2 Activity"
    Repeat,      ///< its number, "Rep"
    Time,
    X,
    Y,
    Year
};

/** Names as people and programs write them: case, blanks, signs and a unit in brackets behind the
 *  name make no difference. */
namespace ColumnNames {
bool isNameOf(NameOf kind, const std::string& name);

/** "PartNo", "case_id": which end with a word for numbers of their own. */
bool endsAsNumbering(const std::string& name);

/** "Stress predicted" or "sd of stress" beside the output "Stress". "T_upper" beside "T" is a
 *  quantity of its own, "y upper" a limit of y. */
bool isFigureOf(const std::string& name, const std::string& output);

/** Whether both are called the same but for a number, or an a, b or c after a blank, at the end; or
 *  are numbered responses. A letter after an underscore is a subscript: "T_h" and "T_c" are
 *  different quantities. */
bool areRepeats(const std::string& name, const std::string& output);
} // namespace ColumnNames
