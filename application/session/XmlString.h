#pragma once

#include <QString>

#include <string>
#include <string_view>

/** UTF-8 as it stands: QString's own conversion takes a leading U+FEFF for a byte order mark and
 *  drops it. */
QString toQString(std::string_view text);

/** The way back. @throw XmlFault for half of a surrogate pair, which has no UTF-8. */
std::string toUtf8Text(const QString& text);
