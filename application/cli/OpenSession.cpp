#include "OpenSession.h"

#include "CommandLine.h"
#include "CommandOutput.h"

#include <session/cases/CaseFileReader.h>
#include <session/model/InputValues.h>
#include <session/model/ModelFile.h>
#include <session/model/SessionChoices.h>
#include <session/project/ProjectCases.h>
#include <session/project/ProjectDocument.h>
#include <session/report/ReportHeading.h>
#include <session/text/SessionErrors.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {
/** Reads the case file of a project, or the one that replaces it. */
CaseTable casesOfProject(const CommandLine& line, const ProjectDocument& document)
{
    if (!line.cases.empty()) {
        const std::string sentence = otherCasesNote(document, line.cases);
        if (!sentence.empty()) {
            note(line, "Note: " + sentence + '\n');
        }
        return CaseFileReader::read(line.cases, line.reading);
    }
    const ProjectDocument::CaseFileCheck check = document.checkCaseFile();
    if (check.state != ProjectDocument::Unchanged) {
        throw ProjectDocumentError(
            check.sentence +
            (check.state == ProjectDocument::Missing
                 ? " Put it back there, or name it with --cases FILE."
                 : " Use it as it is now with --cases FILE, and save the project again."));
    }
    return CaseFileReader::read(document.caseFile.path, readingOptions(document, line.reading));
}

std::unique_ptr<CaseSession> sessionOfProject(const CommandLine& line)
{
    const ProjectDocument document = ProjectDocument::load(line.subject);
    refuseToReplace("report", line.report, {document.caseFile.path});
    refuseToReplace("output", line.output, {document.caseFile.path});
    OpenedProject opened = openProject(casesOfProject(line, document), document, line.choices);
    for (const std::string& sentence : opened.notes) {
        note(line, "Note: " + sentence + '\n');
    }
    return std::move(opened.session);
}

std::unique_ptr<CaseSession> sessionOfCases(const CommandLine& line)
{
    refuseToReplace("project", line.save, {line.subject});
    SessionChoices choices = line.choices;
    if (line.command == CommandLine::Summary) {
        choices.unnamedOutputs = UnnamedOutputs::Suggested;
    }
    return openCases(readCaseTable(line.subject, line.reading), choices);
}

/** Refuses what only response surfaces have where the project chooses kriging. A comparison has a
 *  response surface in any case. */
void checkModel(const CommandLine& line, const Workspace& workspace)
{
    if (workspace.modelType() != Workspace::Kriging || line.command == CommandLine::Compare) {
        return;
    }
    const std::pair<bool, const char*> faults[] = {
        {line.choosesTerms(),
         "--terms, --select-terms and --all-terms choose the terms of a response surface, and the "
         "project chooses kriging: add -m response-surface."},
        {!workspace.modelChoices().designColumns.isEmpty(),
         "Weights and blocks are for response surfaces only: choose -m response-surface, or "
         "--weights none and --block none."},
        {line.choices.coding.has_value(),
         "--coding is for the coefficients of a response surface, and the model is kriging: leave "
         "it out, or choose -m response-surface."},
        {line.command == CommandLine::Equations,
         "Only response surfaces have equations, and the project chooses kriging: add -m "
         "response-surface."}};
    for (const auto& [isGiven, sentence] : faults) {
        if (isGiven) {
            throw UsageError(sentence);
        }
    }
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
    : opened(line.startsFromModel() ? std::make_unique<CaseSession>(ModelFile::read(line.subject))
             : line.startsFromProject() ? sessionOfProject(line)
                                        : sessionOfCases(line)),
      readSeconds(watch.seconds())
{
    // An exported model has its roles, and may well have no input.
    if (!line.startsFromModel() && line.command != CommandLine::Summary) {
        requireRoles(session, line.startsFromProject());
        requireFewInputs(session, line.command == CommandLine::Compare);
    }
    checkModel(line, session);
    if (!session.source().guess.empty()) {
        note(line, "Read as: " + session.source().guess + '\n');
    }
    if (line.command != CommandLine::Summary) { // which has them in its text
        for (const std::string& sentence : ReportHeading::readingNotes(session)) {
            note(line, "Note: " + sentence + '\n');
        }
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
