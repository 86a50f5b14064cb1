#pragma once

#include <mirel_serialization/SerializerInterface.h>

#include <QDomDocument>

#include <gtest/gtest.h>

#include <string>
#include <vector>

/** For tests: what is hard to quote or to encode, and characters of every plane. */
inline std::vector<std::string> textsThatXmlCanCarry()
{
    std::vector<std::string> texts = {
        " ",
        "0 - 1 : 3",
        "\"q\" 'a'",
        "<b>&amp;&#10;</b>",
        "<![CDATA[]]><!-- --><?p?>",
        "a\tb\nc\rd\r\n  e",
        "%1%",
        "Gr\xC3\xB6\xC3\x9F"
        "e",
        "\x7F\xC2\x85\xE2\x80\xA8",
        "\xEF\xBB\xBFmarked",
        "\xEF\xBF\xBD",
    };
    for (char32_t plane = 0; plane <= 16; ++plane) {
        const char32_t characters[] = {plane * 0x10000 + 0x6E29, plane * 0x10000 + 0xFFFD};
        texts.push_back(QString::fromUcs4(characters, 2).toStdString());
    }
    return texts;
}

/** For tests: `text` as a document; fails the test when it cannot be read. */
inline QDomDocument documentOf(const std::string& text)
{
    QDomDocument document;
    QString error;
    EXPECT_TRUE(document.setContent(QByteArray::fromStdString(text), &error))
        << error.toStdString() << " in " << text;
    return document;
}

/** What `serializer` writes, as the only element of a document in a single line. */
inline std::string written(const SerializerInterface& serializer)
{
    QDomDocument document;
    document.appendChild(serializer.serialize(document));
    return document.toString(-1).toStdString();
}

/** Hands the root element of the document `text` to `serializer`. */
inline void read(const SerializerInterface& serializer, const std::string& text)
{
    const QDomDocument document = documentOf(text);
    QDomElement root = document.documentElement();
    serializer.deserialize(root);
}
