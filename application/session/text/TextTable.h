#pragma once

#include <surrogate_session/Export.h>

#include <string>
#include <vector>

/** A table for people to read, in text: columns as wide as their widest cell. */
class SURROGATE_SESSION_EXPORT TextTable
{
public:
    /** @param alignsRight one per column: whether its cells stand to the right, as numbers do. */
    explicit TextTable(std::vector<bool> alignsRight);

    /** Adds a row. @param cells as many as there are columns, or fewer; line breaks in them are
     *  shown as oneLineText() does. */
    void add(std::vector<std::string> cells);

    /** One line per row, without blanks at their ends. @param indent what each begins with. */
    std::string text(const std::string& indent) const;

private:
    std::vector<bool> alignsRight;
    std::vector<std::vector<std::string>> rows;
};
