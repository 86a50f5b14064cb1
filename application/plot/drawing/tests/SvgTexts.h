#pragma once

#include <QByteArray>
#include <QXmlStreamReader>

#include <algorithm>
#include <string>
#include <vector>

/** The texts of an SVG document in the order in which they are drawn; none if it is no XML. */
inline std::vector<std::string> textsOf(const std::string& svg)
{
    std::vector<std::string> texts;
    QXmlStreamReader reader(QByteArray::fromStdString(svg));
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == "text") {
            texts.push_back(reader.readElementText().trimmed().toStdString());
        }
    }
    return reader.hasError() ? std::vector<std::string>() : texts;
}

inline long countOfText(const std::string& svg, const std::string& text)
{
    const std::vector<std::string> texts = textsOf(svg);
    return std::count(texts.begin(), texts.end(), text);
}

inline bool hasText(const std::string& svg, const std::string& text)
{
    return countOfText(svg, text) > 0;
}
