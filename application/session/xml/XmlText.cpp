#include "session/xml/XmlText.h"

#include "session/text/QuotedText.h"

#include <mirel_property/Utf8.h>
#include <mirel_serialization/storableText.h>

#include <QByteArray>
#include <QString>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cassert>
#include <utility>

namespace {
constexpr std::string_view malformed = "the document is damaged or no XML: ";

bool isBlank(const std::string& text)
{
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

/** How many bytes at the start are UTF-8 of characters that XML can carry. */
std::size_t xmlPrefixLength(std::string_view bytes)
{
    std::size_t position = 0;
    while (position < bytes.size()) {
        const Utf8Character character = firstCharacter(bytes.substr(position));
        if (character.length == 0 || !canBeInXml(character.code)) {
            break;
        }
        position += character.length;
    }
    return position;
}

/** Turns offsets into positions; they must ascend. */
class PositionCursor
{
public:
    explicit PositionCursor(const QString& text) : text(text) {}

    XmlPosition at(qint64 target)
    {
        for (; offset < target && offset < text.size(); ++offset) {
            const QChar character = text.at(static_cast<int>(offset));
            position.column += character.isLowSurrogate() ? 0 : 1;
            if (character == QLatin1Char('\n')) {
                ++position.line;
                position.column = 1;
            }
        }
        return position;
    }

private:
    const QString& text;
    qint64 offset = 0;
    XmlPosition position = {1, 1};
};

/**
 * Refuses, before the parser sees the text, declarations, which can define entities, and elements
 * with very many attributes, whose names the parser would compare in pairs. Whether the rest is
 * well-formed is left to the parser.
 */
class TagScan
{
public:
    explicit TagScan(const QString& text) : text(text) {}

    void run()
    {
        while ((at = text.indexOf(QLatin1Char('<'), at)) >= 0) {
            const QStringRef rest = text.midRef(at, 9);
            if (rest.startsWith(QLatin1String("<!--"))) {
                skipPast(QLatin1String("-->"), 4);
            } else if (rest.startsWith(QLatin1String("<![CDATA["))) {
                skipPast(QLatin1String("]]>"), 9);
            } else if (rest.startsWith(QLatin1String("<?"))) {
                skipPast(QLatin1String("?>"), 2);
            } else if (rest.startsWith(QLatin1String("<!"))) {
                fail(at, "a document type declaration is not accepted; remove it.");
            } else {
                skipTag();
            }
        }
    }

private:
    void skipPast(QLatin1String end, int beginning)
    {
        const int found = text.indexOf(end, at + beginning);
        at = found < 0 ? text.size() : found + end.size();
    }

    void skipTag()
    {
        const int begin = at;
        std::size_t attributes = 0;
        QChar quote;
        for (; at < text.size(); ++at) {
            const QChar character = text.at(at);
            if (!quote.isNull()) {
                quote = character == quote ? QChar() : quote;
            } else if (character == QLatin1Char('"') || character == QLatin1Char('\'')) {
                quote = character;
            } else if (character == QLatin1Char('>')) {
                return;
            } else if (character == QLatin1Char('=') && ++attributes > maxXmlAttributes) {
                fail(begin, "an element has more than " + std::to_string(maxXmlAttributes) +
                                " attributes.");
            }
        }
    }

    [[noreturn]] void fail(int offset, const std::string& message) const
    {
        throw XmlFault(PositionCursor(text).at(offset), message);
    }

    const QString& text;
    int at = 0;
};

std::string bytesOf(const QStringRef& text)
{
    return text.toUtf8().toStdString();
}

/** Builds the nodes from the parser's tokens. */
class TreeReader
{
public:
    explicit TreeReader(const QString& text) : text(text), parser(text), cursor(text)
    {
        // Prefixes are part of the names: what has one is kept and written as it came.
        parser.setNamespaceProcessing(false);
    }

    XmlNode read()
    {
        while (!parser.atEnd()) {
            const qint64 begin = parser.characterOffset();
            accept(parser.readNext(), begin);
        }
        if (parser.hasError()) {
            const XmlPosition position = cursor.at(parser.characterOffset() - 1);
            std::string reason = shownText(parser.errorString().toStdString());
            if (!reason.empty() && reason.back() == '.') {
                reason.pop_back();
            }
            throw XmlFault(position, std::string(malformed) + reason + '.');
        }
        return std::move(root);
    }

private:
    void accept(QXmlStreamReader::TokenType token, qint64 begin)
    {
        switch (token) {
        case QXmlStreamReader::StartDocument:
            checkEncoding();
            break;
        case QXmlStreamReader::StartElement:
            open(begin);
            break;
        case QXmlStreamReader::EndElement:
            close();
            break;
        case QXmlStreamReader::Characters:
            add(XmlNode::Text, {}, parser.text());
            break;
        case QXmlStreamReader::Comment:
            add(XmlNode::Comment, {}, parser.text());
            break;
        case QXmlStreamReader::ProcessingInstruction:
            add(XmlNode::Instruction, parser.processingInstructionTarget(),
                parser.processingInstructionData());
            break;
        default:
            break;
        }
    }

    void checkEncoding()
    {
        const QStringRef encoding = parser.documentEncoding();
        if (!encoding.isEmpty() && encoding.compare(QLatin1String("UTF-8"), Qt::CaseInsensitive)) {
            throw XmlFault({1, 1}, "the encoding must be UTF-8, not " +
                                       quotedText(bytesOf(encoding)) + '.');
        }
    }

    void open(qint64 begin)
    {
        const XmlPosition position = cursor.at(bracketOf(begin));
        if (openNodes.size() == maxXmlNesting) {
            throw XmlFault(position, "elements are nested deeper than " +
                                         std::to_string(maxXmlNesting) + " levels.");
        }
        XmlNode node = XmlNode::element(bytesOf(parser.qualifiedName()));
        node.position = position;
        for (const QXmlStreamAttribute& attribute : parser.attributes()) {
            node.attributes.emplace(bytesOf(attribute.qualifiedName()), bytesOf(attribute.value()));
        }
        openNodes.push_back(std::move(node));
    }

    /** The bracket of a start tag whose token begins there: with blanks if it is the root, else
     *  perhaps after the bracket. */
    qint64 bracketOf(qint64 begin) const
    {
        while (text.at(static_cast<int>(begin)).isSpace()) {
            ++begin;
        }
        return text.lastIndexOf(QLatin1Char('<'), static_cast<int>(begin));
    }

    void close()
    {
        XmlNode node = std::move(openNodes.back());
        openNodes.pop_back();
        removeLayout(node);
        if (openNodes.empty()) {
            root = std::move(node);
        } else {
            openNodes.back().children.push_back(std::move(node));
        }
    }

    /** Blanks are layout where an element holds other elements and no text. */
    static void removeLayout(XmlNode& node)
    {
        const auto isText = [](const XmlNode& child) { return child.kind == XmlNode::Text; };
        std::vector<XmlNode>& children = node.children;
        const bool holdsOthers = !std::all_of(children.begin(), children.end(), isText);
        if (holdsOthers && isBlank(node.content())) {
            children.erase(std::remove_if(children.begin(), children.end(), isText),
                           children.end());
        }
    }

    /** Adds what is no element to the open one; around the root it is left out. */
    void add(XmlNode::Kind kind, const QStringRef& name, const QStringRef& content)
    {
        if (openNodes.empty()) {
            return;
        }
        std::vector<XmlNode>& children = openNodes.back().children;
        // CDATA sections and references come as tokens of their own.
        const bool continuesText =
            kind == XmlNode::Text && !children.empty() && children.back().kind == XmlNode::Text;
        if (!continuesText) {
            children.push_back(XmlNode::textNode({}));
            children.back().kind = kind;
            children.back().name = bytesOf(name);
        }
        children.back().text += bytesOf(content);
    }

    const QString& text;
    QXmlStreamReader parser;
    PositionCursor cursor;
    std::vector<XmlNode> openNodes;
    XmlNode root;
};

QString writable(const std::string& text)
{
    if (xmlPrefixLength(text) != text.size()) {
        throw XmlFault(XmlPosition(), "XML cannot carry the text " + quotedText(text) +
                                          ": it holds a control character, or bytes that are no "
                                          "UTF-8.");
    }
    return storableText(text);
}

/** Writes nodes, and refuses what readXml() would not read back. */
class TreeWriter
{
public:
    std::string write(const XmlNode& root)
    {
        writer.writeStartDocument();
        breakLine(0);
        writeElement(root, 0);
        breakLine(0);
        return bytes.toStdString();
    }

private:
    void writeElement(const XmlNode& node, int depth)
    {
        if (static_cast<std::size_t>(depth) == maxXmlNesting) {
            throw XmlFault(XmlPosition(), "the element " + quotedText(node.name) +
                                              " is nested deeper than " +
                                              std::to_string(maxXmlNesting) + " levels.");
        }
        const QString tag = writable(node.name);
        if (node.children.empty()) {
            writer.writeEmptyElement(tag);
            writeAttributes(node);
            return;
        }
        writer.writeStartElement(tag);
        writeAttributes(node);
        // Blanks next to a text would become part of it.
        const bool isIndented =
            std::none_of(node.children.begin(), node.children.end(),
                         [](const XmlNode& child) { return child.kind == XmlNode::Text; });
        for (const XmlNode& child : node.children) {
            if (isIndented) {
                breakLine(depth + 1);
            }
            write(child, depth + 1);
        }
        if (isIndented) {
            breakLine(depth);
        }
        writer.writeEndElement();
    }

    void writeAttributes(const XmlNode& node)
    {
        for (const auto& attribute : node.attributes) {
            writer.writeAttribute(writable(attribute.first), writable(attribute.second));
        }
    }

    void write(const XmlNode& node, int depth)
    {
        switch (node.kind) {
        case XmlNode::Element:
            writeElement(node, depth);
            break;
        case XmlNode::Text:
            writeText(writable(node.text));
            break;
        case XmlNode::Comment:
            writer.writeComment(writable(node.text));
            break;
        case XmlNode::Instruction:
            writer.writeProcessingInstruction(writable(node.name), writable(node.text));
            break;
        }
    }

    /** A carriage return as a reference: as a character, it is read as a newline. */
    void writeText(const QString& text)
    {
        const QStringList parts = text.split(QLatin1Char('\r'));
        for (int i = 0; i < parts.size(); ++i) {
            if (i > 0) {
                writer.writeEntityReference(QStringLiteral("#13"));
            }
            writer.writeCharacters(parts.at(i));
        }
    }

    void breakLine(int depth)
    {
        writer.writeCharacters(QLatin1Char('\n') + QString(2 * depth, QLatin1Char(' ')));
    }

    QByteArray bytes;
    QXmlStreamWriter writer{&bytes};
};
} // namespace

XmlNode readXml(std::string_view bytes)
{
    const std::size_t length = xmlPrefixLength(bytes);
    const QString text = QString::fromUtf8(bytes.data(), static_cast<int>(length));
    if (length < bytes.size()) {
        throw XmlFault(PositionCursor(text).at(text.size()),
                       "a project document is UTF-8 text, and the byte " +
                           quotedText(bytes.substr(length, 1)) + " here cannot be part of it.");
    }
    TagScan(text).run();
    return TreeReader(text).read();
}

std::string writeXml(const XmlNode& root)
{
    return TreeWriter().write(root);
}
