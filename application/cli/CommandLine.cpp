#include "CommandLine.h"

#include <session/model/ModelFile.h>
#include <session/project/ProjectDocument.h>
#include <session/text/SessionErrors.h>

#include <utility>

namespace {
void require(bool condition, const std::string& sentence)
{
    if (!condition) {
        throw UsageError(sentence);
    }
}

/** Refuses what an exported model has no use for: it has no cases, and is fitted already. */
void checkModelFile(const CommandLine& line)
{
    const std::string name = '"' + line.subject + '"';
    const bool takesModels = line.command == CommandLine::Evaluate ||
                             line.command == CommandLine::Predict ||
                             line.command == CommandLine::Export;
    require(takesModels, name + " is an exported model, which only the commands evaluate, predict "
                                "and export can use; this one needs cases.");
    const SessionChoices& choices = line.choices;
    const bool hasRoles = !choices.inputs.empty() || !choices.outputs.empty();
    const std::pair<bool, const char*> ofFits[] = {
        {hasRoles || choices.excluded || choices.model, "-x, -y, -m and --exclude choose"},
        {line.choosesTerms(), "--terms, --select-terms and --all-terms choose"},
        {choices.weights || choices.blocks, "--weights and --block choose"},
        {choices.transform.has_value(), "--transform chooses"}};
    for (const auto& [isGiven, options] : ofFits) {
        require(!isGiven, std::string(options) + " what is fitted, and " + name +
                              " is an exported model, already fitted.");
    }
    const std::pair<bool, const char*> ofCases[] = {{!line.save.empty(), "--save"},
                                                    {line.interval.has_value(), "--interval"}};
    for (const auto& [isGiven, option] : ofCases) {
        require(!isGiven, std::string(option) + " needs cases, and " + name +
                              " is an exported model, without cases.");
    }
    const ReadingChoices& reading = line.reading;
    const bool saysLayout = reading.encoding || reading.heading || reading.unitsRow ||
                            reading.skippedLines || reading.commentMark ||
                            !reading.missing.isEmpty() || reading.isStrict;
    require((!reading.separator && !reading.decimalMark) || line.command != CommandLine::Export,
            name + " is not a table: leave out --separator and --decimal.");
    require(!saysLayout || line.command == CommandLine::Predict,
            name + " is not a table: leave out options such as --heading and --missing.");
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
            "A project cannot read cases from the standard input again; put them into a file.");
    require(cases.empty() || startsFromProject(),
            "--cases replaces the case file of a project, and \"" + subject + "\" is none.");
    if (startsFromModel() && !isCheck && !isProject) {
        checkModelFile(*this);
    }
    require(!points.empty() || command != Predict,
            "The command predict needs the file with the points: --points FILE.");
    require(choices.model != CaseSession::Kriging || command != Equations,
            "Only response surfaces have equations: leave out -m kriging.");
    require(choices.transform != TransformSetting::BoxCox || choices.model != CaseSession::Kriging,
            "--transform boxcox is for response surfaces only: choose another one for kriging.");
    require(!choosesTerms() || choices.model != CaseSession::Kriging,
            "--terms, --select-terms and --all-terms choose the terms of a response surface: leave "
            "out -m kriging.");
    const bool writesCommas = writtenSeparator == ',' && writtenDecimal == CellValue::Comma;
    require(!writesCommas && (reading.separator != ',' || reading.decimalMark != CellValue::Comma),
            "A comma cannot be both the separator and the decimal mark; choose another separator.");
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
