#include <mirel_datamanagement/Project.h>

#include <mirel_datamanagement/ProjectError.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

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

TEST(VariableName, IsKeptByteForByte)
{
    const std::pair<const char*, std::string> accepted[] = {
        {"PlainText", "Pressure"},
        {"OneBlank", " "},
        {"MarkupCharacters", "<a href=\"x\">&'</a>"},
        {"TabNewlineAndReturn", "a\tb\nc\rd"},
        {"TwoByteCharacter", "Stra\xC3\x9F"
                             "e"},
        {"FirstTwoByteCharacter", "\xC2\x80"},
        {"DeleteCharacter", "a\x7F"},
        {"ThreeByteCharacter", "\xE2\x82\xAC"},
        {"LastBeforeSurrogates", "\xED\x9F\xBF"},
        {"FirstAfterSurrogates", "\xEE\x80\x80"},
        {"ReplacementCharacter", "\xEF\xBF\xBD"},
        {"FourByteCharacter", "\xF0\x9F\x94\xA7"},
        {"LastCharacter", "\xF4\x8F\xBF\xBD"}};
    for (const auto& [description, name] : accepted) {
        Project project;
        const VarPtr variable = project.addTextVariable(name, Variable::Unassigned);
        EXPECT_EQ(variable.lock()->name(), name) << description;
        EXPECT_EQ(project.variable(name), variable) << description;
    }
}

TEST(VariableName, IsNamedInTheMessageAndLeavesNoTraceWhenRefused)
{
    struct Refused
    {
        const char* description;
        std::string name;
        const char* message;
    };
    const Refused refused[] = {
        {"Empty", "", "A variable needs a name, but the name given is empty."},
        {"StrayByte",
         "ab\xFF"
         "c",
         "The variable name \"ab\\xFFc\" is not valid UTF-8: byte 0xFF at position 3."},
        {"Latin1",
         "Stra\xDF"
         "e",
         "The variable name \"Stra\\xDFe\" is not valid UTF-8: byte 0xDF at position 5."},
        {"CutOff", "a\xE2\x82",
         "The variable name \"a\\xE2\\x82\" is not valid UTF-8: byte 0xE2 at position 2."},
        {"StrayContinuation", "\x80",
         "The variable name \"\\x80\" is not valid UTF-8: byte 0x80 at position 1."},
        {"OverlongTwoBytes", "\xC1\xBF",
         "The variable name \"\\xC1\\xBF\" is not valid UTF-8: byte 0xC1 at position 1."},
        {"OverlongThreeBytes", "\xE0\x9F\xBF",
         "The variable name \"\\xE0\\x9F\\xBF\" is not valid UTF-8: byte 0xE0 at position 1."},
        {"OverlongFourBytes", "\xF0\x8F\xBF\xBF",
         "The variable name \"\\xF0\\x8F\\xBF\\xBF\" is not valid UTF-8: byte 0xF0 at position 1."},
        {"Surrogate", "\xED\xA0\x80",
         "The variable name \"\\xED\\xA0\\x80\" is not valid UTF-8: byte 0xED at position 1."},
        {"BeyondTheLastCharacter", "\xF4\x90\x80\x80",
         "The variable name \"\\xF4\\x90\\x80\\x80\" is not valid UTF-8: byte 0xF4 at position 1."},
        {"ControlCharacter",
         "a\x01"
         "b",
         "The variable name \"a\\x01b\" contains the character U+0001, which project "
         "documents cannot store."},
        {"NullCharacter", std::string("a\0b", 3),
         "The variable name \"a\\x00b\" contains the character U+0000, which project "
         "documents cannot store."},
        {"ReversedByteOrderMark", "\xEF\xBF\xBE",
         "The variable name \"\\xEF\\xBF\\xBE\" contains the character U+FFFE, which project "
         "documents cannot store."},
        {"LastOfThePlane", "\xEF\xBF\xBF",
         "The variable name \"\\xEF\\xBF\\xBF\" contains the character U+FFFF, which project "
         "documents cannot store."}};
    for (const auto& [description, name, message] : refused) {
        SCOPED_TRACE(description);
        Project project;
        EXPECT_EQ(refusalOf(project, name), message);
    }
}

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
