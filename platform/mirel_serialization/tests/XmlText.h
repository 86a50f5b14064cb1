#pragma once

#include <mirel_serialization/SerializerInterface.h>

#include <QDomDocument>

#include <gtest/gtest.h>

#include <string>

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
