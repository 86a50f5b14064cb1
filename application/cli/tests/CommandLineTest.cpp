#include "../CommandLine.h"

#include "../../session/tests/MessageOf.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <string>

namespace {
struct Refusal
{
    const char* name;
    void (*change)(CommandLine&);
    const char* sentence;
};

class CommandLineRefusal : public ::testing::TestWithParam<Refusal>
{};

const Refusal refusals[] = {
    {"NoCases", [](CommandLine& line) { line.subject.clear(); },
     "The command needs a case file or a project document."},
    {"NoProject",
     [](CommandLine& line) {
         line.command = CommandLine::Project;
         line.subject.clear();
     },
     "The command project needs a project document."},
    {"OtherEndingOfAProject", [](CommandLine& line) { line.save = "plane.xml"; },
     "The name of a project document ends with .surrogate.xml, which \"plane.xml\" does not."},
    {"ProjectOfAPipe",
     [](CommandLine& line) {
         line.subject = "-";
         line.save = "a.surrogate.xml";
     },
     "A project cannot find cases again that came from the standard input; put them into a file."},
    {"OtherCasesOfNoProject", [](CommandLine& line) { line.cases = "other.csv"; },
     "--cases names the case file of a project document; without one it has no meaning."},
    {"NoPoints", [](CommandLine& line) { line.command = CommandLine::Predict; },
     "The command predict needs the file with the points: --points FILE."},
    {"CasesAndPointsOfAPipe",
     [](CommandLine& line) {
         line.command = CommandLine::Predict;
         line.subject = line.points = "-";
     },
     "The cases and the points cannot both come from the standard input."},
    {"EquationsOfKriging",
     [](CommandLine& line) {
         line.command = CommandLine::Equations;
         line.choices.model = CaseSession::Kriging;
     },
     "Only the response surface has equations: leave out -m kriging."},
    {"BoxCoxOfKriging",
     [](CommandLine& line) {
         line.choices.transform = TransformSetting::BoxCox;
         line.choices.model = CaseSession::Kriging;
     },
     "Only response surfaces are transformed by Box and Cox: choose another --transform for "
     "kriging."},
    {"TermsOfKriging",
     [](CommandLine& line) {
         line.choices.terms = PolynomialTerms::Linear;
         line.choices.model = CaseSession::Kriging;
     },
     "--terms, --select-terms and --all-terms choose the terms of a response surface: leave out -m "
     "kriging."},
    {"ReportToTheStandardOutput", [](CommandLine& line) { line.report = "-"; },
     "--report needs the name of a file for the page."},
    {"FitOfAModel", [](CommandLine& line) { line.subject = "m.json"; },
     "\"m.json\" is an exported model, which the commands evaluate, predict and export take; this "
     "one needs cases."},
    {"TermsOfAModel",
     [](CommandLine& line) {
         line.command = CommandLine::Evaluate;
         line.subject = "m.json";
         line.choices.selection = ResponseSurfaceOptions::Selection::All;
     },
     "--terms, --select-terms and --all-terms choose what is fitted; \"m.json\" is an exported "
     "model, fitted already."},
};

CommandLine fitOfCases()
{
    CommandLine line;
    line.command = CommandLine::Fit;
    line.subject = "cases.csv";
    return line;
}
} // namespace

TEST_P(CommandLineRefusal, IsASentence)
{
    CommandLine line = fitOfCases();
    GetParam().change(line);

    EXPECT_EQ(messageOf<UsageError>([&] { line.check(); }), GetParam().sentence);
}

INSTANTIATE_TEST_SUITE_P(Use, CommandLineRefusal, ::testing::ValuesIn(refusals),
                         [](const auto& refusal) { return std::string(refusal.param.name); });

TEST(CommandLine, KnowsProjectsAndModelsByTheirNames)
{
    CommandLine line = fitOfCases();
    EXPECT_NO_THROW(line.check());
    EXPECT_FALSE(line.startsFromProject() || line.startsFromModel());

    line.subject = "p.surrogate.xml";
    EXPECT_TRUE(line.startsFromProject());
    line.subject = "m.json";
    EXPECT_TRUE(line.startsFromModel());
}
