#include "session/xml/XmlString.h"

#include "session/xml/XmlFault.h"

#include <mirel_serialization/storableText.h>

QString toQString(std::string_view text)
{
    return storableText(std::string(text));
}

std::string toUtf8Text(const QString& text)
{
    const std::string bytes = text.toStdString();
    if (QString::fromStdString('.' + bytes) != QLatin1Char('.') + text) {
        throw XmlFault(XmlPosition(), "XML cannot carry the text \"" + bytes +
                                          "\": it holds half of a surrogate pair.");
    }
    return bytes;
}
