#include "session/project/ProjectElements.h"

#include "session/cases/CaseFileLayout.h"
#include "session/cases/CaseNumbers.h"
#include "session/text/DecimalText.h"
#include "session/text/SessionErrors.h"
#include "session/xml/XmlChecks.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <set>

using namespace XmlChecks;

namespace {
constexpr std::size_t version = 1;

/** More cases than anybody fits a model to: what a text like 1-99999999999 may ask for. */
constexpr std::size_t maxCases = 20000000;

constexpr std::size_t sha256Digits = 64;

constexpr std::array<Word<bool>, 2> answers = {{{"yes", true}, {"no", false}}};

constexpr std::array<Word<TextEncoding>, 4> encodings = {
    {{"utf-8", TextEncoding::Utf8},
     {"windows-1252", TextEncoding::Windows1252},
     {"utf-16", TextEncoding::Utf16Little},
     {"utf-16-be", TextEncoding::Utf16Big}}};

constexpr std::array<Word<char>, 5> thousandsSeparators = {
    {{"comma", ','}, {"point", '.'}, {"blank", ' '}, {"apostrophe", '\''}, {"underscore", '_'}}};

constexpr std::array<Word<bool>, 2> decimalMarks = {{{"point", false}, {"comma", true}}};

constexpr std::array<Word<Variable::Nature>, 3> roles = {{{"independent", Variable::Independent},
                                                          {"dependent", Variable::Dependent},
                                                          {"unassigned", Variable::Unassigned}}};

/** Without the element no terms are selected. */
constexpr std::array<Word<ResponseSurfaceOptions::Selection>, 1> termSelections = {
    {{"BackwardAicc", ResponseSurfaceOptions::Selection::BackwardAicc}}};

constexpr std::array<Word<PolynomialTerms>, 4> polynomials = {
    {{"Linear", PolynomialTerms::Linear},
     {"Interactions", PolynomialTerms::Interactions},
     {"Quadratic", PolynomialTerms::Quadratic},
     {"Chosen", PolynomialTerms::Chosen}}};

/** The usual one is said by the absence of the element. */
constexpr std::array<Word<TransformSetting>, 5> transforms = {
    {{"Automatic", TransformSetting::Automatic},
     {"None", TransformSetting::None},
     {"SquareRoot", TransformSetting::SquareRoot},
     {"Logarithm", TransformSetting::Logarithm},
     {"BoxCox", TransformSetting::BoxCox}}};

/** Without the element inputs are coded axially. */
constexpr std::array<Word<InputCoding>, 2> codings = {
    {{"Axial", InputCoding::Axial}, {"Factorial", InputCoding::Factorial}}};

[[noreturn]] void refuseRepeated(const XmlNode& element)
{
    refuse(element, "the element " + quotedText(element.name) + " comes twice.");
}

/** Both ends or none. */
std::optional<ProjectContents::Range> optionalRange(const XmlNode& element, const std::string& from,
                                                    const std::string& to)
{
    if (element.attribute(from) == nullptr && element.attribute(to) == nullptr) {
        return std::nullopt;
    }
    return ProjectContents::Range(finiteNumber(element, from), finiteNumber(element, to));
}

/** What a user said about the reading; an attribute that is absent was not said. */
ReadingChoices readReading(const XmlNode& element)
{
    ReadingChoices reading;
    const auto isThere = [&](const char* name) { return element.attribute(name) != nullptr; };
    const auto readWord = [&](const char* name, const auto& words, auto& choice) {
        if (isThere(name)) {
            choice = requiredWord(element, name, words);
        }
    };
    readWord("ThousandsSeparator", thousandsSeparators, reading.thousandsSeparator);
    readWord("Encoding", encodings, reading.encoding);
    readWord("Heading", answers, reading.heading);
    readWord("UnitsRow", answers, reading.unitsRow);
    readWord("Strict", answers, reading.isStrict);
    if (isThere("SkippedLines")) {
        reading.skippedLines = requiredNumber(element, "SkippedLines", 0, maxCases);
    }
    if (isThere("CommentMark")) {
        reading.commentMark = required(element, "CommentMark");
    }
    if (isThere("Missing")) {
        reading.missing = MissingWords(required(element, "Missing"));
    }
    return reading;
}

ProjectContents::CaseFile readCaseFile(const XmlNode& element)
{
    allowOnlyAttributes(element, {"Path", "Bytes", "Sha256", "Separator", "DecimalMark",
                                  "ThousandsSeparator", "Encoding", "Heading", "UnitsRow",
                                  "SkippedLines", "CommentMark", "Missing", "Strict"});

    ProjectContents::CaseFile file;
    file.path = requiredText(element, "Path");
    file.fingerprint.bytes =
        requiredNumber(element, "Bytes", 0, std::numeric_limits<std::size_t>::max());
    file.fingerprint.sha256 = required(element, "Sha256");
    const bool hasDigits =
        file.fingerprint.sha256.find_first_not_of("0123456789abcdef") == std::string::npos;
    if (!hasDigits || file.fingerprint.sha256.size() != sha256Digits) {
        refuse(element, described(element, "Sha256") + " needs " + std::to_string(sha256Digits) +
                            " hexadecimal digits in lower case, not " +
                            quotedText(file.fingerprint.sha256) + '.');
    }
    file.separator = requiredWord(element, "Separator", separatorWords);
    file.hasDecimalComma = requiredWord(element, "DecimalMark", decimalMarks);
    file.reading = readReading(element);
    return file;
}

std::vector<ProjectContents::VariableEntry> readVariables(const XmlNode& list)
{
    std::vector<ProjectContents::VariableEntry> variables;
    std::set<std::string> names;
    for (const XmlNode* const element :
         entriesOf(list, "Variable", {"Name", "Role", "Lower", "Upper"})) {
        ProjectContents::VariableEntry variable;
        variable.name = requiredText(*element, "Name");
        if (!names.insert(variable.name).second) {
            refuse(*element, "the variable " + quotedText(variable.name) + " comes twice.");
        }
        variable.role = requiredWord(*element, "Role", roles);
        variable.range = optionalRange(*element, "Lower", "Upper");
        if (variable.range && variable.range->second < variable.range->first) {
            refuse(*element, "the range of the variable " + quotedText(variable.name) +
                                 " is reversed: its lower end " +
                                 numberText(variable.range->first) + " is above its upper end " +
                                 numberText(variable.range->second) + '.');
        }
        variables.push_back(std::move(variable));
    }
    return variables;
}

using Roles = std::map<std::string, Variable::Nature>;

/** The name of an entry, which is a variable's of the right role and comes once. */
std::string entryName(const XmlNode& element, const std::string& what, const Roles& known,
                      Variable::Nature role, std::set<std::string>& seen)
{
    const std::string& name = requiredText(element, "Name");
    const auto found = known.find(name);
    if (found == known.end() || found->second != role) {
        refuse(element, "the " + what + ' ' + quotedText(name) + " must be " +
                            (role == Variable::Dependent ? "a dependent" : "an independent") +
                            " variable, and " +
                            (found == known.end()
                                 ? "there is no variable of that name."
                                 : "that variable is " + wordFor(found->second, roles) + '.'));
    }
    if (!seen.insert(name).second) {
        refuse(element, "the " + what + ' ' + quotedText(name) + " comes twice.");
    }
    return name;
}

std::vector<std::string> readOutputs(const XmlNode& list, const Roles& known)
{
    std::vector<std::string> outputs;
    std::set<std::string> seen;
    for (const XmlNode* const element : entriesOf(list, "Output", {"Name"})) {
        outputs.push_back(entryName(*element, "output", known, Variable::Dependent, seen));
    }
    return outputs;
}

std::vector<ProjectContents::Sweep> readSweeps(const XmlNode& list, const Roles& known)
{
    std::vector<ProjectContents::Sweep> sweeps;
    std::set<std::string> seen;
    for (const XmlNode* const element : entriesOf(list, "Sweep", {"Name", "Count", "From", "To"})) {
        ProjectContents::Sweep sweep;
        sweep.name = entryName(*element, "swept input", known, Variable::Independent, seen);
        sweep.count = requiredNumber(*element, "Count", 2, ProjectContents::maxSweptValues);
        sweep.range = optionalRange(*element, "From", "To");
        sweeps.push_back(std::move(sweep));
    }
    return sweeps;
}

std::vector<std::size_t> readExcluded(const XmlNode& element)
{
    allowAttributes(element, {});
    refuseElements(element);
    const std::string text = element.content();
    if (text.find_first_not_of(" \t\r\n") == std::string::npos) {
        return {};
    }
    try {
        return readCaseNumbers(text, maxCases);
    } catch (const UsageError&) {
        refuse(element, "the excluded cases " + quotedText(text) +
                            " are no case numbers or ranges of them, from 1 to " +
                            std::to_string(maxCases) + "; write them like 3,7-9.");
    }
}

/** A choice that is an element of its own; without it the choice is the usual one. */
template <class Choice, std::size_t count>
void readMethod(const XmlNode& root, const char* tag, const std::array<Word<Choice>, count>& words,
                Choice& choice)
{
    if (const XmlNode* const element = root.child(tag)) {
        allowOnlyAttributes(*element, {"Method"});
        choice = requiredWord(*element, "Method", words);
    }
}

template <class Choice, std::size_t count>
void writeMethod(XmlNode& root, const char* tag, const std::array<Word<Choice>, count>& words,
                 Choice choice, Choice usual)
{
    if (choice != usual) {
        root.children.push_back(XmlNode::element(tag, {{"Method", wordFor(choice, words)}}));
    }
}

/** The formula of chosen terms is in the names of inputs: whether they are there decides the fit.
 */
void readPolynomial(const XmlNode& element, ResponseSurfaceOptions& options)
{
    options.terms = requiredWord(element, "Terms", polynomials);
    if (options.terms == PolynomialTerms::Chosen) {
        allowOnlyAttributes(element, {"Terms", "Formula"});
        options.formula = requiredText(element, "Formula");
    } else {
        allowOnlyAttributes(element, {"Terms"});
    }
}

/** Entries of any name: the library reads only their attributes. */
void checkDistributions(const XmlNode& block)
{
    allowAttributes(block, {});
    refuseText(block);
    for (const XmlNode* const entry : block.elements()) {
        allowOnlyAttributes(*entry, {"Name", "Mode", "Distribution"});
    }
}

/** The library's serializers pass over what they do not know, and the next save would drop it. */
void checkModel(const XmlNode& model)
{
    refuseText(model);
    std::set<std::string> seen;
    for (const XmlNode* const child : model.elements()) {
        if (child->name == "Variable") {
            allowOnlyAttributes(*child, {"Name"});
        } else if (isModelElement(*child) && !seen.insert(child->name).second) {
            refuseRepeated(*child);
        } else if (child->name == distributionBlock) {
            checkDistributions(*child);
        } else if (child->name == "Type") {
            allowAttributes(*child, {});
            refuseElements(*child);
        }
    }
}

void readUserDistributions(const XmlNode& element)
{
    allowAttributes(element, {});
    refuseText(element);
    const std::vector<const XmlNode*> blocks = element.elements();
    for (const XmlNode* const block : blocks) {
        if (block->name != distributionBlock) {
            refuseElement(*block, element);
        }
        checkDistributions(*block);
    }
    if (blocks.size() > 1) {
        refuseRepeated(*blocks[1]);
    }
}

void checkRoot(const XmlNode& root)
{
    if (root.name != "SurrogateProject") {
        refuse(root, "a project document begins with the element \"SurrogateProject\", not with " +
                         quotedText(root.name) + "; this is another kind of file.");
    }
    const std::size_t written =
        requiredNumber(root, "Version", 1, std::numeric_limits<std::size_t>::max());
    if (written > version) {
        refuse(root, "the document was written by a newer version of the program (format " +
                         std::to_string(written) + "; this one reads format " +
                         std::to_string(version) + "); open it with that one.");
    }
    allowAttributes(root, {"Version"});
    refuseText(root);
}

const XmlNode& requiredChild(const XmlNode& root, const std::string& tag)
{
    const XmlNode* const child = root.child(tag);
    if (child == nullptr) {
        refuse(root, "the document lacks the element " + quotedText(tag) + '.');
    }
    return *child;
}

const std::set<std::string>& knownTags()
{
    static const std::set<std::string> tags = {
        "CaseFile",       "Variables",         "Outputs",         "ExcludedCases",
        "SurrogateModel", "UserDistributions", "Sweeps",          "TermSelection",
        "Polynomial",     "CaseDesign",        "OutputTransform", "InputCoding"};
    return tags;
}

/** What is not known is kept for the program that wrote it. */
std::vector<XmlNode> unknownChildren(const XmlNode& root)
{
    std::vector<XmlNode> unknown;
    std::set<std::string> seen;
    for (const XmlNode* const child : root.elements()) {
        if (knownTags().count(child->name) == 0) {
            unknown.push_back(*child);
        } else if (!seen.insert(child->name).second) {
            refuseRepeated(*child);
        }
    }
    return unknown;
}

void setRange(XmlNode& element, const std::string& from, const std::string& to,
              const std::optional<ProjectContents::Range>& range)
{
    if (range) {
        element.attributes[from] = numberText(range->first);
        element.attributes[to] = numberText(range->second);
    }
}

XmlNode caseFileElement(const ProjectContents::CaseFile& file)
{
    XmlNode element = XmlNode::element(
        "CaseFile", {{"Path", file.path},
                     {"Bytes", std::to_string(file.fingerprint.bytes)},
                     {"Sha256", file.fingerprint.sha256},
                     {"Separator", wordFor(file.separator, separatorWords)},
                     {"DecimalMark", wordFor(file.hasDecimalComma, decimalMarks)}});
    const ReadingChoices& reading = file.reading;
    const auto writeWord = [&](const char* name, const auto& words, const auto& choice) {
        if (choice) {
            element.attributes[name] = wordFor(*choice, words);
        }
    };
    writeWord("ThousandsSeparator", thousandsSeparators, reading.thousandsSeparator);
    writeWord("Encoding", encodings, reading.encoding);
    writeWord("Heading", answers, reading.heading);
    writeWord("UnitsRow", answers, reading.unitsRow);
    if (reading.skippedLines) {
        element.attributes["SkippedLines"] = std::to_string(*reading.skippedLines);
    }
    if (reading.commentMark) {
        element.attributes["CommentMark"] = *reading.commentMark;
    }
    if (!reading.missing.isEmpty()) {
        element.attributes["Missing"] = reading.missing.text();
    }
    if (reading.isStrict) {
        element.attributes["Strict"] = "yes";
    }
    return element;
}

XmlNode variablesElement(const std::vector<ProjectContents::VariableEntry>& variables)
{
    XmlNode list = XmlNode::element("Variables");
    for (const ProjectContents::VariableEntry& variable : variables) {
        list.children.push_back(XmlNode::element(
            "Variable", {{"Name", variable.name}, {"Role", wordFor(variable.role, roles)}}));
        setRange(list.children.back(), "Lower", "Upper", variable.range);
    }
    return list;
}

XmlNode outputsElement(const std::vector<std::string>& outputs)
{
    XmlNode list = XmlNode::element("Outputs");
    for (const std::string& output : outputs) {
        list.children.push_back(XmlNode::element("Output", {{"Name", output}}));
    }
    return list;
}

XmlNode excludedElement(std::vector<std::size_t> excluded)
{
    std::sort(excluded.begin(), excluded.end());
    excluded.erase(std::unique(excluded.begin(), excluded.end()), excluded.end());
    XmlNode element = XmlNode::element("ExcludedCases");
    if (!excluded.empty()) {
        element.children.push_back(XmlNode::textNode(caseNumbersText(excluded)));
    }
    return element;
}

XmlNode sweepsElement(const std::vector<ProjectContents::Sweep>& sweeps)
{
    XmlNode list = XmlNode::element("Sweeps");
    for (const ProjectContents::Sweep& sweep : sweeps) {
        list.children.push_back(XmlNode::element(
            "Sweep", {{"Name", sweep.name}, {"Count", std::to_string(sweep.count)}}));
        setRange(list.children.back(), "From", "To", sweep.range);
    }
    return list;
}
} // namespace

bool isModelElement(const XmlNode& node)
{
    return node.kind == XmlNode::Element &&
           (node.name == "Type" || node.name == "Variable" || node.name == distributionBlock);
}

void readProjectElements(const XmlNode& root, ProjectContents& contents, ProjectSettings& settings)
{
    checkRoot(root);
    settings.unknown = unknownChildren(root);

    contents.caseFile = readCaseFile(requiredChild(root, "CaseFile"));
    contents.variables = readVariables(requiredChild(root, "Variables"));
    Roles known;
    for (const ProjectContents::VariableEntry& variable : contents.variables) {
        known.emplace(variable.name, variable.role);
    }
    if (const XmlNode* const outputs = root.child("Outputs")) {
        contents.outputs = readOutputs(*outputs, known);
    }
    if (const XmlNode* const excluded = root.child("ExcludedCases")) {
        contents.excluded = readExcluded(*excluded);
    }
    if (const XmlNode* const model = root.child("SurrogateModel")) {
        checkModel(*model);
        settings.model = *model;
        std::stable_partition(settings.model->children.begin(), settings.model->children.end(),
                              isModelElement);
    }
    if (const XmlNode* const distributions = root.child("UserDistributions")) {
        readUserDistributions(*distributions);
        settings.userDistributions = *distributions;
    }
    if (const XmlNode* const sweeps = root.child("Sweeps")) {
        contents.sweeps = readSweeps(*sweeps, known);
    }
    readMethod(root, "TermSelection", termSelections, contents.responseSurface.selection);
    if (const XmlNode* const polynomial = root.child("Polynomial")) {
        readPolynomial(*polynomial, contents.responseSurface);
    }
    if (const XmlNode* const design = root.child("CaseDesign")) {
        allowOnlyAttributes(*design, {"Weights", "Blocks"});
        contents.designColumns.weights = optionalText(*design, "Weights");
        contents.designColumns.blocks = optionalText(*design, "Blocks");
    }
    readMethod(root, "OutputTransform", transforms, contents.transform);
    readMethod(root, "InputCoding", codings, contents.coding);
}

XmlNode projectElement(const ProjectContents& contents, const ProjectSettings& settings)
{
    XmlNode root = XmlNode::element("SurrogateProject", {{"Version", std::to_string(version)}});
    root.children.push_back(caseFileElement(contents.caseFile));
    root.children.push_back(variablesElement(contents.variables));
    root.children.push_back(outputsElement(contents.outputs));
    root.children.push_back(excludedElement(contents.excluded));
    if (settings.model) {
        root.children.push_back(*settings.model);
    }
    if (settings.userDistributions) {
        root.children.push_back(*settings.userDistributions);
    }
    root.children.push_back(sweepsElement(contents.sweeps));
    // Versions that do not know these keep them like everything unknown, and fit all terms of the
    // full quadratic polynomial, to the outputs themselves.
    const ResponseSurfaceOptions& options = contents.responseSurface;
    if (options.terms != PolynomialTerms::Quadratic) {
        XmlNode polynomial =
            XmlNode::element("Polynomial", {{"Terms", wordFor(options.terms, polynomials)}});
        if (options.terms == PolynomialTerms::Chosen) {
            polynomial.attributes["Formula"] = options.formula;
        }
        root.children.push_back(std::move(polynomial));
    }
    writeMethod(root, "TermSelection", termSelections, options.selection,
                ResponseSurfaceOptions::Selection::All);
    if (!contents.designColumns.isEmpty()) {
        XmlNode design = XmlNode::element("CaseDesign", {});
        if (!contents.designColumns.weights.empty()) {
            design.attributes["Weights"] = contents.designColumns.weights;
        }
        if (!contents.designColumns.blocks.empty()) {
            design.attributes["Blocks"] = contents.designColumns.blocks;
        }
        root.children.push_back(std::move(design));
    }
    writeMethod(root, "OutputTransform", transforms, contents.transform, TransformSetting::Usual);
    writeMethod(root, "InputCoding", codings, contents.coding, InputCoding::Axial);
    root.children.insert(root.children.end(), settings.unknown.begin(), settings.unknown.end());
    return root;
}
