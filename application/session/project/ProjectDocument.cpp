#include "session/project/ProjectDocument.h"

#include "session/files/ByteSource.h"
#include "session/files/OutputFile.h"
#include "session/project/ProjectElements.h"
#include "session/project/ProjectPaths.h"
#include "session/text/QuotedText.h"
#include "session/text/SessionErrors.h"
#include "session/xml/XmlDom.h"
#include "session/xml/XmlFault.h"
#include "session/xml/XmlText.h"

#include <mirel_serialization/SerializerInterface.h>

#include <QDomDocument>
#include <QDomElement>

#include <cerrno>
#include <string_view>

#include <sys/stat.h>

class ProjectDocument::Impl
{
public:
    ProjectSettings settings;
    std::string source; ///< the file that the elements come from, for messages
};

namespace {
/** In bytes: no project comes near it, and a device that never ends is no project. */
constexpr std::size_t maxDocumentBytes = std::size_t(1) << 26;

std::string placeOf(const std::string& path, const XmlPosition& position)
{
    return path + ", line " + std::to_string(position.line) + ", column " +
           std::to_string(position.column) + ": ";
}

std::string bytesOf(const std::string& path)
{
    std::string bytes = ByteSource::contentOf(path, maxDocumentBytes);
    if (bytes.size() > maxDocumentBytes) {
        throw ProjectDocumentError(path + ": a project document has at most " +
                                   std::to_string(maxDocumentBytes) +
                                   " bytes; this is another kind of file.");
    }
    return bytes;
}

std::string attributeOr(const XmlNode& element, const char* name, const char* otherwise)
{
    const std::string* const value = element.attribute(name);
    return value == nullptr ? otherwise : *value;
}

/** The elements of the block of distributions in an element, if both are there. */
std::vector<const XmlNode*> distributionElements(const std::optional<XmlNode>& parent)
{
    const XmlNode* const block = parent ? parent->child(distributionBlock) : nullptr;
    return block == nullptr ? std::vector<const XmlNode*>() : block->elements();
}

/** What they say, those that their reader would skip included. */
std::vector<ProjectDocument::Distribution> distributionsIn(const std::optional<XmlNode>& parent)
{
    std::vector<ProjectDocument::Distribution> distributions;
    for (const XmlNode* const element : distributionElements(parent)) {
        distributions.push_back({attributeOr(*element, "Name", ""),
                                 attributeOr(*element, "Mode", "UserDefined"),
                                 attributeOr(*element, "Distribution", "")});
    }
    return distributions;
}

XmlNode elementOf(const SerializerInterface& serializer)
{
    QDomDocument document;
    try {
        return nodeOf(serializer.serialize(document));
    } catch (const XmlFault& fault) {
        throw ProjectDocumentError("The settings " + quotedText(serializer.name()) +
                                   " cannot be part of a project document: " + fault.what());
    }
}

/** What another version has put into the element that is replaced. */
void keepUnknown(const std::optional<XmlNode>& old, XmlNode& element)
{
    if (!old) {
        return;
    }
    element.attributes.insert(old->attributes.begin(), old->attributes.end());
    for (const XmlNode& node : old->children) {
        const bool isKnown = isModelElement(node) || node.kind == XmlNode::Text;
        if (!isKnown && (node.kind != XmlNode::Element || element.child(node.name) == nullptr)) {
            element.children.push_back(node);
        }
    }
}

void give(const std::optional<XmlNode>& element, const SerializerInterface& serializer)
{
    if (element) {
        QDomDocument document;
        QDomElement root = makeDomRoot(document, *element);
        serializer.deserialize(root);
    }
}

/** The library would stop at an unknown mode with other settings read already. */
void checkModes(const std::optional<XmlNode>& parent, const std::string& source)
{
    for (const XmlNode* const element : distributionElements(parent)) {
        const std::string mode = attributeOr(*element, "Mode", "UserDefined");
        if (mode != "Auto" && mode != "UserDefined") {
            throw ProjectDocumentError(placeOf(source, element->position) + "the mode " +
                                       quotedText(mode) + " of the variable " +
                                       quotedText(attributeOr(*element, "Name", "")) +
                                       " must be \"Auto\" or \"UserDefined\".");
        }
    }
}
} // namespace

ProjectDocument::ProjectDocument() : impl(std::make_shared<Impl>()) {}

bool ProjectDocument::isProjectFile(const std::string& path)
{
    const std::string_view ending = fileEnding;
    return path.size() > ending.size() &&
           path.compare(path.size() - ending.size(), ending.size(), ending) == 0;
}

ProjectDocument ProjectDocument::load(const std::string& path)
{
    const std::string bytes = bytesOf(path);
    ProjectDocument document;
    const auto elements = std::make_shared<Impl>();
    try {
        readProjectElements(readXml(bytes), document, elements->settings);
    } catch (const XmlFault& fault) {
        throw ProjectDocumentError(placeOf(path, fault.position()) + fault.what());
    }
    elements->source = path;
    document.impl = elements;
    document.caseFile.path = pathFromDocument(path, document.caseFile.path);
    return document;
}

void ProjectDocument::save(const std::string& path) const
{
    std::string bytes;
    try {
        if (caseFile.path.empty() || caseFile.path == "-") {
            throw XmlFault(XmlPosition(),
                           "a project needs its cases in a file, not from the standard input.");
        }
        ProjectDocument document = *this;
        document.caseFile.path = pathInDocument(path, caseFile.path);
        const XmlNode root = projectElement(document, impl->settings);
        bytes = writeXml(root);
        // What load() would refuse must not replace a document that it accepts.
        ProjectSettings settings;
        readProjectElements(root, document, settings);
    } catch (const XmlFault& fault) {
        throw ProjectDocumentError("The project document \"" + path +
                                   "\" cannot be written: " + fault.what());
    }
    OutputFile file(path, OutputFile::KeepsBackup);
    file.write(bytes);
    file.commit();
}

ProjectDocument::CaseFileCheck ProjectDocument::checkCaseFile() const
{
    const std::string quotedPath = '"' + caseFile.path + '"';
    struct stat status = {};
    if (stat(caseFile.path.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR)) {
        return {Missing, "The case file " + quotedPath +
                             " of the project is missing: it has been moved, renamed or deleted."};
    }

    std::string change;
    const auto bytes = static_cast<std::uint64_t>(status.st_size);
    if (S_ISREG(status.st_mode) && bytes != caseFile.fingerprint.bytes) {
        change = "it has " + std::to_string(bytes) + " bytes and had " +
                 std::to_string(caseFile.fingerprint.bytes);
    } else if (FileFingerprint::of(caseFile.path) != caseFile.fingerprint) {
        change = "its size is the same, its contents are not";
    } else {
        return {};
    }
    return {Changed, "The case file " + quotedPath +
                         " has changed since the project was saved: " + change + '.'};
}

void ProjectDocument::takeSettings(const SerializerInterface& model,
                                   const SerializerInterface& userDistributions)
{
    const auto taken = std::make_shared<Impl>(*impl);
    XmlNode element = elementOf(model);
    keepUnknown(impl->settings.model, element);
    taken->settings.model = std::move(element);

    XmlNode parent = XmlNode::element("UserDistributions");
    parent.children.push_back(elementOf(userDistributions));
    taken->settings.userDistributions = std::move(parent);
    impl = taken;
}

void ProjectDocument::giveSettings(const SerializerInterface& model,
                                   const SerializerInterface& userDistributions) const
{
    const ProjectSettings& settings = impl->settings;
    checkModes(settings.model, impl->source);
    checkModes(settings.userDistributions, impl->source);
    give(settings.model, model);
    give(settings.userDistributions, userDistributions);
}

std::string ProjectDocument::modelType() const
{
    const XmlNode* const type =
        impl->settings.model ? impl->settings.model->child("Type") : nullptr;
    return type == nullptr ? std::string() : type->content();
}

std::vector<std::string> ProjectDocument::modelInputs() const
{
    std::vector<std::string> names;
    if (!impl->settings.model) {
        return names;
    }
    for (const XmlNode* const element : impl->settings.model->elements()) {
        if (element->name == "Variable") {
            names.push_back(attributeOr(*element, "Name", ""));
        }
    }
    return names;
}

std::vector<ProjectDocument::Distribution> ProjectDocument::evaluationPoint() const
{
    return distributionsIn(impl->settings.model);
}

std::vector<ProjectDocument::Distribution> ProjectDocument::userDistributions() const
{
    return distributionsIn(impl->settings.userDistributions);
}

bool operator==(const ProjectDocument& left, const ProjectDocument& right)
{
    return projectElement(left, left.impl->settings) == projectElement(right, right.impl->settings);
}
