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

} // namespace

QString storableText(const std::string& text)
{
    QString stored = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    std::replace_if(
        stored.begin(), stored.end(), [](QChar character) { return !canBeInXml(character); },
        QChar(QChar::ReplacementCharacter));
    return stored;
}
