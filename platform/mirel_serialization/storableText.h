#pragma once

#include <mirel_serialization/Export.h>

#include <string>

class QString;

/**
 * UTF-8 as the DOM can take it: a character that XML cannot carry (a control character other than
 * tab, line feed and carriage return, U+FFFE, U+FFFF) and bytes that are not UTF-8 become U+FFFD.
 * One of them left in would make the whole document unreadable. Everything else is kept, also a
 * byte order mark at the start, which QString::fromStdString() would drop.
 */
MIREL_SERIALIZATION_EXPORT QString storableText(const std::string& text);
