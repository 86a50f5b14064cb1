#include "session/xml/XmlString.h"

#include "session/xml/XmlText.h"

#include <mirel_serialization/storableText.h>

namespace {
bool isWhole(const QString& text)
{
    for (int i = 0; i < text.size(); ++i) {
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (text.at(i).isSurrogate() && !isPair) {
            return false;
        }
        i += isPair ? 1 : 0;
    }
    return true;
}
} // namespace

QString toQString(std::string_view text)
{
    return storableText(std::string(text));
}

std::string toUtf8Text(const QString& text)
{
    if (!isWhole(text)) {
        throw XmlFault(XmlPosition(), "XML cannot carry the text \"" + text.toStdString() +
                                          "\": it holds half of a surrogate pair.");
    }
    return text.toStdString();
}
