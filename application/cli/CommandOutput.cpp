#include "CommandOutput.h"

#include "CommandLine.h"

#include <session/files/OutputFile.h>
#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <algorithm>
#include <cctype>
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

bool isSameFile(const std::string& left, const std::string& right)
{
    std::error_code ignored;
    return !left.empty() && std::filesystem::is_regular_file(left, ignored) &&
           std::filesystem::equivalent(left, right, ignored);
}

namespace {
bool endsLikeAPage(const std::string& path)
{
    std::string ending = std::filesystem::path(path).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char letter) { return std::tolower(letter); });
    return ending == ".html" || ending == ".htm";
}

/** The page of a fit must replace nothing that is read or written beside it. */
void checkReport(const CommandLine& line)
{
    for (const std::string& input : {line.subject, line.cases}) {
        if (isSameFile(input, line.report)) {
            throw UsageError("The report would replace \"" + input +
                             "\", which is read; name another file.");
        }
    }
    for (const std::string& output : {line.output, line.save}) {
        if (line.report == output || isSameFile(line.report, output)) {
            throw UsageError("The report and another output cannot both be \"" + output + "\".");
        }
    }
    if (!endsLikeAPage(line.report)) {
        throw UsageError("--report writes a page of HTML, whose name ends with .html, which " +
                         quotedText(line.report) + " does not; a browser prints the page as PDF.");
    }
    OutputFile::check(line.report);
}
} // namespace

void checkOutput(const CommandLine& line)
{
    for (const std::string& input : {line.subject, line.cases, line.points}) {
        if (isSameFile(input, line.output)) {
            throw UsageError("The output would replace \"" + input +
                             "\", which is read; name another file.");
        }
    }
    for (const std::string& input : {line.cases, line.points}) {
        if (isSameFile(input, line.save)) {
            throw UsageError("The project would replace \"" + input +
                             "\", which is read; name another file.");
        }
    }
    OutputFile::check(line.output);
    if (!line.report.empty()) {
        checkReport(line);
    }
    if (!line.save.empty()) {
        if (line.save == line.output || isSameFile(line.save, line.output)) {
            throw UsageError("The output and the project cannot both be \"" + line.save + "\".");
        }
        OutputFile::check(line.save, OutputFile::KeepsBackup);
    }
}
