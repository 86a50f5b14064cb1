#include "OpenSession.h"

#include "CommandLine.h"
#include "CommandOutput.h"

#include <session/cases/CaseFileReader.h>
#include <session/cases/CaseNumbers.h>
#include <session/cases/VariableNames.h>
#include <session/files/FileFingerprint.h>
#include <session/model/InputValues.h>
#include <session/model/ModelFile.h>
#include <session/project/ProjectCases.h>
#include <session/project/ProjectDocument.h>
#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <mirel_datamanagement/Project.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace {
std::string nameOf(const VarPtr& variable)
{
    return variable.lock()->name();
}

/** Options that name cases, as positions; each mention is a list, and "none" is an empty one. */
std::vector<std::size_t> excludedCases(const CommandLine& line, std::size_t cases)
{
    if (line.excluded == std::vector<std::string>{"none"}) {
        return {};
    }
    std::string text;
    for (const std::string& list : line.excluded) {
        text += (text.empty() ? "" : ",") + list;
    }
    return readCaseNumbers(text, cases);
}

void requireRoles(const CommandLine& line, const CaseSession& session)
{
    if (line.command == CommandLine::Summary) {
        return;
    }
    if (session.outputs().empty()) {
        std::string numeric;
        for (const VarPtr& variable : session.project().variables()) {
            if (variable.lock()->isNumeric()) {
                numeric += (numeric.empty() ? "\"" : ", \"") + nameOf(variable) + '"';
            }
        }
        throw UsageError("The command needs an output: -y NAME. " +
                         (numeric.empty() ? "No column is numeric."
                                          : "The numeric columns are: " + numeric + '.'));
    }
    if (session.inputs().empty()) {
        throw UsageError(line.startsFromProject() ? "The project has no input; name one: -x NAME."
                                                  : "No numeric column is left to be an input.");
    }
}

/** Reads the case file of a project, or the one that is to take its place. */
CaseTable readProjectCases(const CommandLine& line, const ProjectDocument& document)
{
    const ProjectDocument::CaseFile& known = document.caseFile;
    CaseFileReader::Options options;
    options.separator = line.separator;
    options.decimalMark = line.decimalMark;
    if (!line.cases.empty()) {
        if (FileFingerprint::of(line.cases) != known.fingerprint) {
            note(line, "Note: \"" + line.cases +
                           "\" holds other data than the case file that the project was saved "
                           "with.\n");
        }
        return CaseFileReader::read(line.cases, options);
    }

    const ProjectDocument::CaseFileCheck check = document.checkCaseFile();
    if (check.state == ProjectDocument::Missing) {
        throw ProjectDocumentError(check.sentence +
                                   " Put it back there, or name it with --cases FILE.");
    }
    if (check.state == ProjectDocument::Changed) {
        throw ProjectDocumentError(check.sentence +
                                   " Name it with --cases FILE to work with it as it is now, and "
                                   "save the project again.");
    }
    return CaseFileReader::read(known.path, readingOptions(document, options));
}

/** The library passes over inputs that are none, and the numbers are others without them. */
void noteMissingInputs(const CommandLine& line, const ProjectDocument& document,
                       const CaseSession& session)
{
    const std::vector<std::string> present = namesOf(session.inputs());
    for (const std::string& name : document.modelInputs()) {
        if (std::find(present.begin(), present.end(), name) == present.end()) {
            note(line, "Note: the input " + quotedText(name) +
                           " of the project is left out, it is no independent variable there.\n");
        }
    }
}

/** The library takes every type that it does not know for Kriging. */
void noteUnknownModel(const CommandLine& line, const ProjectDocument& document)
{
    const std::string type = document.modelType();
    if (!type.empty() && type != "Kriging" && type != "ResponseModel") {
        note(line, "Note: the model " + quotedText(type) +
                       " of the project is not known to this version, which takes kriging.\n");
    }
}

void chooseTerms(const CommandLine& line, CaseSession& session)
{
    ResponseSurfaceOptions options = session.responseSurface();
    options.selection = line.terms.value_or(options.selection);
    options.terms = line.polynomial.value_or(options.terms);
    session.chooseResponseSurface(options);
}

/** The choices of a project document, and over them those of the command line. */
std::unique_ptr<CaseSession> openProject(const CommandLine& line)
{
    const ProjectDocument document = ProjectDocument::load(line.subject);
    if (isSameFile(document.caseFile.path, line.report)) {
        throw UsageError("The report would replace \"" + document.caseFile.path +
                         "\", the project's case file; name another file.");
    }
    if (isSameFile(document.caseFile.path, line.output)) {
        throw UsageError("The output would replace \"" + document.caseFile.path +
                         "\", the project's case file; name another file.");
    }
    CaseTable table = readProjectCases(line, document);
    const CaseRoles roles =
        chooseCaseRoles(table, line.inputs, line.outputs, rolesIn(document, table));
    const std::size_t cases = table.cases;

    auto opened = std::make_unique<CaseSession>(std::move(table));
    CaseSession& session = *opened;
    session.load(document);
    if (line.inputs.empty()) {
        noteMissingInputs(line, document, session);
    }
    if (!line.inputs.empty() || !line.outputs.empty()) {
        session.chooseRoles(roles);
    }
    if (!line.excluded.empty()) {
        session.exclude(excludedCases(line, cases));
    }
    if (line.model) {
        session.chooseModel(*line.model);
    } else {
        noteUnknownModel(line, document);
    }
    // A comparison has a response surface whatever the project chooses.
    if (line.choosesTerms() && session.modelType() == CaseSession::Kriging &&
        line.command != CommandLine::Compare) {
        throw UsageError("--terms, --select-terms and --all-terms choose the terms of a response "
                         "surface, and the project chooses kriging: add -m response-surface.");
    }
    chooseTerms(line, session);
    return opened;
}

std::unique_ptr<CaseSession> openCases(const CommandLine& line)
{
    if (isSameFile(line.subject, line.save)) {
        throw UsageError("The project would replace \"" + line.subject +
                         "\", which is read; name another file.");
    }
    CaseFileReader::Options options;
    options.separator = line.separator;
    options.decimalMark = line.decimalMark;
    CaseTable table = readCaseTable(line.subject, options);
    const CaseRoles roles = chooseCaseRoles(table, line.inputs, line.outputs);
    const std::vector<std::size_t> excluded =
        line.excluded.empty() ? std::vector<std::size_t>() : excludedCases(line, table.cases);
    auto session = std::make_unique<CaseSession>(std::move(table), roles, excluded,
                                                 line.model.value_or(CaseSession::ResponseSurface));
    chooseTerms(line, *session);
    return session;
}

/** A text NAME=VALUE of an option. */
const std::string& assignment(const std::string& option, const std::string& text)
{
    if (text.find('=') == std::string::npos) {
        throw UsageError(option + " needs NAME=VALUE, not \"" + text + "\".");
    }
    return text;
}
} // namespace

OpenSession::OpenSession(const CommandLine& line)
    : start(std::chrono::steady_clock::now()),
      opened(line.startsFromModel() ? std::make_unique<CaseSession>(ModelFile::read(line.subject))
             : line.startsFromProject() ? openProject(line)
                                        : openCases(line)),
      readSeconds(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count())
{
    // An exported model has its roles, and may well have no input.
    if (!line.startsFromModel()) {
        requireRoles(line, session);
    }
}

void OpenSession::chooseValues(const CommandLine& line, std::size_t usualCount)
{
    InputValues values(session);
    for (const std::string& text : line.sweeps) {
        if (usualCount > 0 && values.isName(text)) {
            values.sweepEvenly(text, usualCount);
        } else {
            values.sweep(assignment("--sweep", text));
        }
    }
    for (const std::string& text : line.counts) {
        values.sweepEvenly(assignment("--count", text));
    }
    for (const std::string& text : line.values) {
        values.hold(assignment("--at", text));
    }
    held = values.held();
}

void OpenSession::save(const CommandLine& line) const
{
    if (!line.save.empty()) {
        session.document().save(line.save);
    }
}
