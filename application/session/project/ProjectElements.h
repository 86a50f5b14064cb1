#pragma once

#include <session/project/ProjectContents.h>
#include <session/xml/XmlNode.h>

#include <optional>
#include <vector>

/** The elements of a project document that its public fields do not hold. */
struct ProjectSettings
{
    std::optional<XmlNode> model;             ///< "SurrogateModel"
    std::optional<XmlNode> userDistributions; ///< "UserDistributions", the parent of their block
    std::vector<XmlNode> unknown;             ///< other children of the root
};

/** The block of distributions inside the model's element and inside "UserDistributions". */
constexpr const char* distributionBlock = "SurrogateModelUserDefinedVariableDistribution";

/** Whether the library's serializers know a child of "SurrogateModel". */
bool isModelElement(const XmlNode& node);

/**
 * Reads the root of a project document.
 * @param contents  receives the fields; the path of the case file as it stands in the document.
 * @param settings  receives the other elements.
 * @throw XmlFault
 */
void readProjectElements(const XmlNode& root, ProjectContents& contents, ProjectSettings& settings);

/** Makes the root of a project document from them. */
XmlNode projectElement(const ProjectContents& contents, const ProjectSettings& settings);
