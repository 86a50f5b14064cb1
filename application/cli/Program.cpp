#include "Program.h"

#include "CommandDescriptions.h"
#include "CommandLine.h"
#include "CommandOptions.h"
#include "CommandOutput.h"
#include "Commands.h"
#include "Interruption.h"

#include <session/files/OutputFile.h>
#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <exception>
#include <iostream>
#include <new>

namespace {
enum ExitCode
{
    Done = 0,
    ModelFailed = 1,
    WrongUse = 2,
    BadCaseData = 3,
    BadDistributionText = 4,
    FileFailed = 5
};

int failed(ExitCode code, const std::string& message)
{
    std::cerr << "surrogate: " << messageText(message) << '\n';
    return code;
}
} // namespace

int runProgram(const std::vector<std::string>& arguments)
{
    try {
        setSettingOptions(settingOptions());
        if (arguments.empty()) {
            writeText("-", CommandOptions::shortHelp());
            return WrongUse;
        }
        run(CommandOptions::parse(arguments));
        return Done;
    } catch (const OutputFile::BrokenPipe&) {
        return Done;
    } catch (const Interrupted&) {
        return Interruption::exitCode;
    } catch (const UsageError& error) {
        return failed(WrongUse, error.what());
    } catch (const CaseDataError& error) {
        return failed(BadCaseData, error.what());
    } catch (const ModelFileError& error) {
        return failed(BadCaseData, error.what());
    } catch (const ProjectDocumentError& error) {
        return failed(BadCaseData, error.what());
    } catch (const DistributionTextError& error) {
        return failed(BadDistributionText, error.what());
    } catch (const FileError& error) {
        return failed(FileFailed, error.what());
    } catch (const SurrogateModelInterface::Error& error) {
        return failed(ModelFailed, error.what());
    } catch (const std::bad_alloc&) {
        return failed(ModelFailed, "There is not enough memory for this.");
    } catch (const std::exception& error) {
        return failed(ModelFailed, error.what());
    } catch (...) {
        return failed(ModelFailed, "The command failed for an unknown reason.");
    }
}
