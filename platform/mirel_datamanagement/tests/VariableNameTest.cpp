#include <mirel_datamanagement/Project.h>

#include <mirel_datamanagement/ProjectError.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

struct NamedText
{
    std::string description;
    std::string name;
    std::string message;
};

/** Names of tests are the same in every run, which the bytes of an object are not. */
void PrintTo(const NamedText& text, std::ostream* output)
{
    *output << text.description;
}

std::string descriptionOf(const testing::TestParamInfo<NamedText>& info)
{
    return info.param.description;
}

struct VariableNameAccepted : testing::TestWithParam<NamedText>
{};

struct VariableNameRefused : testing::TestWithParam<NamedText>
{};

/** What the refusal says; the project must stay as it was. */
std::string refusalOf(Project& project, const std::string& name)
{
    int changes = 0;
    const boost::signals2::scoped_connection counting =
        project.connectSignalChanged([&changes] { ++changes; });
    const std::vector<VarPtr> before = project.variables();
    std::string message = "accepted";
    try {
        project.addNumericVariable(name, Variable::Independent, {1.0});
    } catch (const ProjectError& error) {
        message = error.what();
        EXPECT_EQ(project.variables(), before);
        EXPECT_EQ(project.recordCount(), 0u);
        EXPECT_EQ(changes, 0);
    }
    return message;
}

} // namespace

TEST_P(VariableNameAccepted, IsKeptByteForByte)
{
    Project project;
    const VarPtr variable = project.addTextVariable(GetParam().name, Variable::Unassigned);
    EXPECT_EQ(variable.lock()->name(), GetParam().name);
    EXPECT_EQ(project.variable(GetParam().name), variable);
}

INSTANTIATE_TEST_SUITE_P(VariableNames, VariableNameAccepted,
                         testing::Values(NamedText{"PlainText", "Pressure", ""},
                                         NamedText{"OneBlank", " ", ""},
                                         NamedText{"MarkupCharacters", "<a href=\"x\">&'</a>", ""},
                                         NamedText{"TabNewlineAndReturn", "a\tb\nc\rd", ""},
                                         NamedText{"TwoByteCharacter",
                                                   "Stra\xC3\x9F"
                                                   "e",
                                                   ""},
                                         NamedText{"FirstTwoByteCharacter", "\xC2\x80", ""},
                                         NamedText{"DeleteCharacter", "a\x7F", ""},
                                         NamedText{"ThreeByteCharacter", "\xE2\x82\xAC", ""},
                                         NamedText{"LastBeforeSurrogates", "\xED\x9F\xBF", ""},
                                         NamedText{"FirstAfterSurrogates", "\xEE\x80\x80", ""},
                                         NamedText{"ReplacementCharacter", "\xEF\xBF\xBD", ""},
                                         NamedText{"FourByteCharacter", "\xF0\x9F\x94\xA7", ""},
                                         NamedText{"LastCharacter", "\xF4\x8F\xBF\xBD", ""}),
                         descriptionOf);

TEST_P(VariableNameRefused, IsNamedInTheMessageAndLeavesNoTrace)
{
    Project project;
    EXPECT_EQ(refusalOf(project, GetParam().name), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    VariableNames, VariableNameRefused,
    testing::Values(
        NamedText{"Empty", "", "A variable needs a name, but the name given is empty."},
        NamedText{"StrayByte",
                  "ab\xFF"
                  "c",
                  "The variable name \"ab\\xFFc\" is not valid UTF-8: byte 0xFF at position 3."},
        NamedText{"Latin1",
                  "Stra\xDF"
                  "e",
                  "The variable name \"Stra\\xDFe\" is not valid UTF-8: byte 0xDF at position 5."},
        NamedText{"CutOff", "a\xE2\x82",
                  "The variable name \"a\\xE2\\x82\" is not valid UTF-8: byte 0xE2 at position 2."},
        NamedText{"StrayContinuation", "\x80",
                  "The variable name \"\\x80\" is not valid UTF-8: byte 0x80 at position 1."},
        NamedText{"OverlongTwoBytes", "\xC1\xBF",
                  "The variable name \"\\xC1\\xBF\" is not valid UTF-8: byte 0xC1 at position 1."},
        NamedText{"OverlongThreeBytes", "\xE0\x9F\xBF",
                  "The variable name \"\\xE0\\x9F\\xBF\" is not valid UTF-8: byte 0xE0 at position "
                  "1."},
        NamedText{"OverlongFourBytes", "\xF0\x8F\xBF\xBF",
                  "The variable name \"\\xF0\\x8F\\xBF\\xBF\" is not valid UTF-8: byte 0xF0 at "
                  "position 1."},
        NamedText{"Surrogate", "\xED\xA0\x80",
                  "The variable name \"\\xED\\xA0\\x80\" is not valid UTF-8: byte 0xED at position "
                  "1."},
        NamedText{"BeyondTheLastCharacter", "\xF4\x90\x80\x80",
                  "The variable name \"\\xF4\\x90\\x80\\x80\" is not valid UTF-8: byte 0xF4 at "
                  "position 1."},
        NamedText{"ControlCharacter",
                  "a\x01"
                  "b",
                  "The variable name \"a\\x01b\" contains the character U+0001, which project "
                  "documents cannot store."},
        NamedText{"NullCharacter", std::string("a\0b", 3),
                  "The variable name \"a\\x00b\" contains the character U+0000, which project "
                  "documents cannot store."},
        NamedText{"ReversedByteOrderMark", "\xEF\xBF\xBE",
                  "The variable name \"\\xEF\\xBF\\xBE\" contains the character U+FFFE, which "
                  "project documents cannot store."},
        NamedText{"LastOfThePlane", "\xEF\xBF\xBF",
                  "The variable name \"\\xEF\\xBF\\xBF\" contains the character U+FFFF, which "
                  "project documents cannot store."}),
    descriptionOf);

TEST(VariableName, IsTakenOnceOnly)
{
    Project project;
    project.addTextVariable("x", Variable::Unassigned);
    EXPECT_EQ(refusalOf(project, "x"),
              "The project has a variable \"x\" already; every variable needs a name of its own.");
}

TEST(VariableName, IsComparedByteByByte)
{
    Project project;
    project.addNumericVariable("e", Variable::Unassigned);
    project.addNumericVariable("E", Variable::Unassigned);
    project.addNumericVariable("e ", Variable::Unassigned);
    // The same letter, composed and decomposed.
    project.addNumericVariable("\xC3\xA9", Variable::Unassigned);
    project.addNumericVariable("e\xCC\x81", Variable::Unassigned);
    EXPECT_EQ(project.variables().size(), 5u);
}

TEST(VariableName, IsCheckedAlikeWhenAVariableIsRenamed)
{
    Project project;
    const VarPtr x = project.addNumericVariable("x", Variable::Unassigned);
    project.addNumericVariable("y", Variable::Unassigned);
    EXPECT_THROW(project.renameVariable(x, ""), ProjectError);
    EXPECT_THROW(project.renameVariable(x, "y"), ProjectError);
    EXPECT_THROW(project.renameVariable(x, "\xFF"), ProjectError);
    EXPECT_THROW(project.renameVariable(x, "\x02"), ProjectError);
    EXPECT_EQ(x.lock()->name(), "x");
    EXPECT_EQ(project.variable("x"), x);
}

TEST(VariableName, IsFreeAgainAfterARenaming)
{
    Project project;
    const VarPtr x = project.addNumericVariable("x", Variable::Unassigned);
    project.renameVariable(x, "z");
    const VarPtr successor = project.addNumericVariable("x", Variable::Unassigned);
    EXPECT_EQ(project.variable("x"), successor);
    EXPECT_EQ(project.variable("z"), x);
}
