#include <mirel_serialization/storableText.h>

#include <QString>

#include <algorithm>

namespace {

bool canBeInXml(QChar character)
{
    const ushort code = character.unicode();
    const bool isBlank = code == '\t' || code == '\n' || code == '\r';
    // Surrogates are halves of valid characters here: the decoder has replaced all others.
    return isBlank || (code >= 0x20 && code != 0xFFFE && code != 0xFFFF);
}

/** QString::fromUtf8() drops a byte order mark at the start: it is not at the start here. */
QString decoded(const std::string& text)
{
    const std::string guarded = '.' + text;
    return QString::fromUtf8(guarded.data(), static_cast<int>(guarded.size())).mid(1);
}

} // namespace

QString storableText(const std::string& text)
{
    QString stored = decoded(text);
    std::replace_if(
        stored.begin(), stored.end(), [](QChar character) { return !canBeInXml(character); },
        QChar(QChar::ReplacementCharacter));
    return stored;
}
