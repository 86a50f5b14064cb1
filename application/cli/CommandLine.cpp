#include "CommandLine.h"

#include <session/model/ModelFile.h>
#include <session/project/ProjectDocument.h>
#include <session/text/SessionErrors.h>

namespace {
void require(bool condition, const std::string& sentence)
{
    if (!condition) {
        throw UsageError(sentence);
    }
}

/** What is fitted already cannot be chosen any more. */
void checkModelFile(const CommandLine& line)
{
    const bool isKnown = line.command == CommandLine::Evaluate ||
                         line.command == CommandLine::Predict ||
                         line.command == CommandLine::Export;
    const std::string name = '"' + line.subject + '"';
    require(isKnown, name +
                         " is an exported model, which the commands evaluate, predict and export "
                         "take; this one needs cases.");
    require(line.choices.inputs.empty() && line.choices.outputs.empty() && !line.choices.excluded &&
                !line.choices.model,
            "-x, -y, -m and --exclude choose what is fitted; " + name +
                " is an exported model, fitted already.");
    require(!line.choosesTerms(),
            "--terms, --select-terms and --all-terms choose what is fitted; " + name +
                " is an exported model, fitted already.");
    require(!line.choices.weights && !line.choices.blocks,
            "--weights and --block choose what is fitted; " + name +
                " is an exported model, fitted already.");
    require(!line.choices.transform, "--transform chooses what is fitted; " + name +
                                         " is an exported model, fitted already.");
    require(line.save.empty(), "--save keeps a choice of cases, and " + name +
                                   " is an exported model, without cases.");
    require(!line.interval, "--interval takes how the cases lie about the model, and " + name +
                                " is an exported model, without cases.");
    const ReadingChoices& reading = line.reading;
    require((!reading.separator && !reading.decimalMark) || line.command != CommandLine::Export,
            "--separator and --decimal say how tables are read and written, and " + name +
                " is none.");
    const bool saysLayout = reading.encoding || reading.heading || reading.unitsRow ||
                            reading.skippedLines || reading.commentMark ||
                            !reading.missing.isEmpty() || reading.isStrict;
    require(!saysLayout || line.command == CommandLine::Predict,
            "Options such as --heading and --missing say how tables are read, and " + name +
                " is none.");
}

} // namespace

void CommandLine::check() const
{
    if (command == Help || command == Version) {
        return;
    }
    const bool isCheck = command == Check;
    const bool isProject = command == Project;
    require(!subject.empty() || isCheck,
            isProject ? "The command project needs a project document."
                      : "The command needs a case file or a project document.");
    require(save.empty() || ProjectDocument::isProjectFile(save),
            "The name of a project document ends with " + std::string(ProjectDocument::fileEnding) +
                ", which \"" + save + "\" does not.");
    require(save.empty() || subject != "-",
            "A project cannot find cases again that came from the standard input; put them into a "
            "file.");
    require(cases.empty() || startsFromProject(),
            "--cases names the case file of a project document; without one it has no meaning.");
    if (startsFromModel() && !isCheck && !isProject) {
        checkModelFile(*this);
    }
    require(!points.empty() || command != Predict,
            "The command predict needs the file with the points: --points FILE.");
    require(choices.model != CaseSession::Kriging || command != Equations,
            "Only the response surface has equations: leave out -m kriging.");
    require(choices.transform != TransformSetting::BoxCox || choices.model != CaseSession::Kriging,
            "Only response surfaces are transformed by Box and Cox: choose another --transform for "
            "kriging.");
    require(!choosesTerms() || choices.model != CaseSession::Kriging,
            "--terms, --select-terms and --all-terms choose the terms of a response surface: leave "
            "out -m kriging.");
    require(reading.separator != ',' || reading.decimalMark != CellValue::Comma,
            "Commas cannot both separate the cells and be the decimal mark; choose another "
            "separator.");
    require(report != "-", "--report needs the name of a file for the page.");
    require(subject != "-" || points != "-",
            "The cases and the points cannot both come from the standard input.");
}

bool CommandLine::startsFromModel() const
{
    return ModelFile::isModelFile(subject);
}

bool CommandLine::startsFromProject() const
{
    return ProjectDocument::isProjectFile(subject);
}
