#include "CommandLine.h"

#include "CommandOptions.h"

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
    require(line.inputs.empty() && line.outputs.empty() && line.excluded.empty() && !line.model,
            "-x, -y, -m and --exclude choose what is fitted; " + name +
                " is an exported model, fitted already.");
    require(!line.choosesTerms(),
            "--terms, --select-terms and --all-terms choose what is fitted; " + name +
                " is an exported model, fitted already.");
    require(line.save.empty(), "--save keeps a choice of cases, and " + name +
                                   " is an exported model, without cases.");
    require(!line.interval, "--interval takes how the cases lie about the model, and " + name +
                                " is an exported model, without cases.");
    require((!line.separator && !line.decimalMark) || line.command == CommandLine::Predict,
            "--separator and --decimal say how tables are read, and " + name + " is none.");
}

/** What depends on the kind of file that is read, and on other options. */
void checkCombination(const CommandLine& line)
{
    const bool isCheck = line.command == CommandLine::Check;
    const bool isProject = line.command == CommandLine::Project;
    require(!line.subject.empty() || isCheck,
            isProject ? "The command project needs a project document."
                      : "The command needs a case file or a project document.");
    require(line.save.empty() || ProjectDocument::isProjectFile(line.save),
            "The name of a project document ends with " + std::string(ProjectDocument::fileEnding) +
                ", which \"" + line.save + "\" does not.");
    require(line.save.empty() || line.subject != "-",
            "A project cannot find cases again that came from the standard input; put them into a "
            "file.");
    require(line.cases.empty() || line.startsFromProject(),
            "--cases names the case file of a project document; without one it has no meaning.");
    if (line.startsFromModel() && !isCheck && !isProject) {
        checkModelFile(line);
    }
    require(!line.points.empty() || line.command != CommandLine::Predict,
            "The command predict needs the file with the points: --points FILE.");
    require(line.model != CaseSession::Kriging || line.command != CommandLine::Equations,
            "Only the response surface has equations: leave out -m kriging.");
    require(!line.choosesTerms() || line.model != CaseSession::Kriging,
            "--terms, --select-terms and --all-terms choose the terms of a response surface: leave "
            "out -m kriging.");
    require(line.report != "-", "--report needs the name of a file for the page.");
    require(line.subject != "-" || line.points != "-",
            "The cases and the points cannot both come from the standard input.");
}
} // namespace

CommandLine CommandLine::parse(const std::vector<std::string>& arguments)
{
    CommandLine line;
    CommandOptions::read(arguments, line);
    if (line.command != Help && line.command != Version) {
        checkCombination(line);
    }
    return line;
}

bool CommandLine::startsFromModel() const
{
    return ModelFile::isModelFile(subject);
}

bool CommandLine::startsFromProject() const
{
    return ProjectDocument::isProjectFile(subject);
}
