#include "../CommandOutput.h"

#include "../../session/tests/MessageOf.h"
#include "../../session/tests/TemporaryFolder.h"
#include "../CommandLine.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {
class CommandOutput : public ::testing::Test
{
protected:
    CommandOutput()
    {
        line.subject = folder.write("cases.csv", "x,y\n1,2\n");
        std::filesystem::create_symlink(line.subject, folder.path("link"));
    }

    std::string refusal() const
    {
        return messageOf<UsageError>([this] { checkOutput(line); });
    }

    TemporaryFolder folder;
    CommandLine line;
};
} // namespace

TEST_F(CommandOutput, ReplacesNothingThatIsReadWhateverItIsCalled)
{
    EXPECT_EQ(refusal(), "accepted");

    line.output = folder.path("link");
    EXPECT_EQ(refusal(), "The output would replace \"" + line.subject +
                             "\", which is read; name another file.");
    line.output = "-";
    line.report = folder.path("link");
    EXPECT_EQ(refusal(), "The report would replace \"" + line.subject +
                             "\", which is read; name another file.");
    line.report.clear();
    line.points = line.save = folder.path("link");
    EXPECT_EQ(refusal(), "The project would replace \"" + line.points +
                             "\", which is read; name another file.");
}

TEST_F(CommandOutput, GoesToFilesOfTheirOwnAndIsCheckedBeforeTheWork)
{
    line.output = line.save = folder.path("p.surrogate.xml");
    EXPECT_EQ(refusal(), "The output and the project cannot both be \"" + line.save + "\".");

    line.save.clear();
    line.report = line.output;
    EXPECT_EQ(refusal(), "The output and the report cannot both be \"" + line.report + "\".");

    line.output = "-";
    line.save = line.report;
    EXPECT_EQ(refusal(), "The project and the report cannot both be \"" + line.report + "\".");

    line.report.clear();
    line.save.clear();
    line.output = folder.path("none/table.csv");

    EXPECT_THROW(checkOutput(line), FileError);
}

TEST_F(CommandOutput, NotesGoToTheStandardErrorUnlessQuietIsWanted)
{
    testing::internal::CaptureStderr();
    note(line, "one\n");
    line.isQuiet = true;
    note(line, "two\n");

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "one\n");
}
