#pragma once

#include <QString>

#include <string>
#include <string_view>

/** UTF-8 that XML can carry, as it stands; anything else as storableText() has it. */
QString toQString(std::string_view text);

/** The way back. @throw XmlFault for half of a surrogate pair, which has no UTF-8. */
std::string toUtf8Text(const QString& text);
