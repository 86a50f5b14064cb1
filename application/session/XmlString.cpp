#include "session/XmlString.h"

#include "session/XmlText.h"

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
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    QString string;
    while (text.substr(0, byteOrderMark.size()) == byteOrderMark) {
        string += QChar(0xFEFF);
        text.remove_prefix(byteOrderMark.size());
    }
    return string + QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

std::string toUtf8Text(const QString& text)
{
    if (!isWhole(text)) {
        throw XmlFault(XmlPosition(), "XML cannot carry the text \"" + text.toStdString() +
                                          "\": it holds half of a surrogate pair.");
    }
    return text.toStdString();
}
