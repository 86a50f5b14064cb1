#include "CommandOutput.h"

#include "CommandLine.h"

#include <session/files/OutputFile.h>
#include <session/report/FitReport.h>
#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <boost/algorithm/string/case_conv.hpp>

#include <filesystem>
#include <iostream>
#include <system_error>

void writeText(const std::string& path, const std::string& text)
{
    OutputFile out(path);
    out.write(text);
    out.commit();
}

void note(const CommandLine& line, const std::string& text)
{
    if (!line.isQuiet) {
        std::cerr << messageText(text);
    }
}

void noteFit(const CommandLine& line, CaseSession& session, const Evaluation* evaluation)
{
    if (!line.isQuiet) {
        note(line, FitReport::notes(session, evaluation));
    }
}

namespace {
/** Whether both names lead to one regular file that exists. */
bool isSameFile(const std::string& left, const std::string& right)
{
    std::error_code ignored;
    return !left.empty() && std::filesystem::is_regular_file(left, ignored) &&
           std::filesystem::equivalent(left, right, ignored);
}

void refuseSameFile(const std::string& what, const std::string& path, const std::string& other,
                    const std::string& otherPath)
{
    if (!path.empty() && (path == otherPath || isSameFile(path, otherPath))) {
        throw UsageError("The " + what + " and the " + other + " cannot both be \"" + path + "\".");
    }
}
} // namespace

void refuseToReplace(const std::string& what, const std::string& path,
                     const std::vector<std::string>& inputs)
{
    for (const std::string& input : inputs) {
        if (isSameFile(input, path)) {
            throw UsageError("The " + what + " would replace \"" + input +
                             "\", which is read; name another file.");
        }
    }
}

void checkOutput(const CommandLine& line)
{
    refuseToReplace("output", line.output, {line.subject, line.cases, line.points});
    refuseToReplace("project", line.save, {line.cases, line.points});
    refuseToReplace("report", line.report, {line.subject, line.cases});
    refuseSameFile("output", line.output, "project", line.save);
    refuseSameFile("output", line.output, "report", line.report);
    refuseSameFile("project", line.save, "report", line.report);
    OutputFile::check(line.output);
    if (!line.report.empty()) {
        const std::string ending = boost::algorithm::to_lower_copy(
            std::filesystem::path(line.report).extension().string());
        if (ending != ".html" && ending != ".htm") {
            throw UsageError("--report writes an HTML page, whose name ends with .html, which " +
                             quotedText(line.report) +
                             " does not; a browser prints the page as PDF.");
        }
        OutputFile::check(line.report);
    }
    if (!line.save.empty()) {
        OutputFile::check(line.save, OutputFile::KeepsBackup);
    }
}
