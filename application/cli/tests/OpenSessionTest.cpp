#include "../OpenSession.h"

#include "../../session/tests/MessageOf.h"
#include "../../session/tests/TemporaryFolder.h"
#include "../CommandLine.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <string>

namespace {
class OpenSessionTest : public ::testing::Test
{
protected:
    OpenSessionTest()
    {
        line.command = CommandLine::Fit;
        line.subject = folder.write("plane.csv", "x,z,y\n0,0,1\n1,0,3\n0,1,0\n2,1,4\n");
        line.choices.outputs = {"y"};
        line.isQuiet = true;
    }

    /** From now on the cases come from a project of them. */
    void saveProject()
    {
        line.save = folder.path("plane.surrogate.xml");
        OpenSession(line).save(line);
        line.subject = line.save;
        line.save.clear();
        line.choices = {};
    }

    TemporaryFolder folder;
    CommandLine line;
};
} // namespace

TEST_F(OpenSessionTest, NeedsRolesButForASummary)
{
    line.choices.outputs.clear();
    EXPECT_THROW(OpenSession open(line), UsageError);

    line.command = CommandLine::Summary;
    EXPECT_NO_THROW(OpenSession open(line));
}

TEST_F(OpenSessionTest, GivesInputsTheirValues)
{
    line.sweeps = {"x=0 - 2 : 5"};
    line.values = {"z=0.5"};
    OpenSession open(line);

    open.chooseValues(line);

    EXPECT_EQ(open.session.sweptInputs(), std::vector<std::size_t>{0});
    EXPECT_EQ(open.held, std::vector<std::size_t>{1});
}

TEST_F(OpenSessionTest, SweepsANameAloneOnlyWhereThereIsAUsualNumberOfValues)
{
    line.sweeps = {"x"};
    OpenSession open(line);

    EXPECT_EQ(messageOf<UsageError>([&] { open.chooseValues(line); }),
              "--sweep needs NAME=VALUE, not \"x\".");
    open.chooseValues(line, 3);
    EXPECT_EQ(open.session.sweptInputs(), std::vector<std::size_t>{0});
}

TEST_F(OpenSessionTest, NamesTheOptionForCasesThatAreMissingOrChanged)
{
    saveProject();
    const std::string path = folder.path("plane.csv");
    const auto end = [this] {
        const std::string message =
            messageOf<ProjectDocumentError>([this] { OpenSession open(line); });
        return message.substr(message.find(". ") + 2);
    };

    folder.write("plane.csv", "x,z,y\n0,0,1\n1,0,3\n0,1,0\n2,1,5\n");
    EXPECT_EQ(end(), "Use it as it is now with --cases FILE, and save the project again.");
    std::filesystem::rename(path, folder.path("moved.csv"));
    EXPECT_EQ(end(), "Put it back there, or name it with --cases FILE.");

    line.cases = folder.path("moved.csv");
    EXPECT_EQ(OpenSession(line).session.outputs().size(), 1u);
}

TEST_F(OpenSessionTest, RefusesTermsOfAProjectThatChoosesKriging)
{
    line.choices.model = CaseSession::Kriging;
    saveProject();
    line.choices.terms = PolynomialTerms::Linear;

    EXPECT_THROW(OpenSession open(line), UsageError);
    line.command = CommandLine::Compare;
    EXPECT_NO_THROW(OpenSession open(line)) << "a comparison has a response surface, too";
}
