#include <session/report/ReportHeading.h>

#include "CvdSession.h"
#include "SmallTable.h"

#include <gtest/gtest.h>

#include <cmath>

#include <string>
#include <vector>

TEST(ReportHeading, NamesTheModelWithTermsThatAreNotTheUsualOnes)
{
    CaseSession session = cvdSession();
    EXPECT_EQ(ReportHeading::modelText(session), "response surface");

    session.choose(
        {{PolynomialTerms::Interactions, ResponseSurfaceOptions::Selection::BackwardAicc}});
    EXPECT_EQ(ReportHeading::modelText(session),
              "response surface, linear with interactions, terms selected by AICc");
    EXPECT_EQ(ReportHeading::modelJson(session)["terms"], "interactions");
    EXPECT_EQ(ReportHeading::modelJson(session)["selectsTerms"], true);

    session.choose({{PolynomialTerms::Linear}});
    EXPECT_EQ(ReportHeading::modelText(session), "response surface, linear");

    session.chooseModel(CaseSession::Kriging);
    EXPECT_EQ(ReportHeading::modelText(session), "Kriging");
}

TEST(ReportHeading, CountsCasesAndNamesWhatMakesThemInvalid)
{
    const CaseSession session(smallTable(), {{0}, {2}}, {1}, CaseSession::ResponseSurface);

    EXPECT_EQ(ReportHeading::caseText(session),
              "5 read, 2 valid, 1 excluded, 2 invalid (\xC3\xA4 1, y 1)");
    EXPECT_EQ(ReportHeading::caseText(cvdSession()), "11 read, 11 valid, 0 excluded, 0 invalid");
}

TEST(ReportHeading, NotesCellsWithoutNumberOfInputsAndOutputs)
{
    CaseTable table = cvdCases();
    for (const std::size_t column : {0, 2}) {
        table.columns[column].withoutNumber.count = 1;
        table.columns[column].withoutNumber.spellings = {"failed"};
        table.columns[column].withoutNumber.firstLine = 3;
        table.columns[column].numbers[1] = std::nan("");
    }
    const CaseSession session(table, {{0, 1}, {3}}, {}, CaseSession::ResponseSurface);

    EXPECT_EQ(
        ReportHeading::readingNotes(session),
        (std::vector<std::string>{"Pressure: 1 cell is no number (\"failed\", in line 3): this "
                                  "case is left out; complete it or leave Pressure out of the "
                                  "inputs."}))
        << "the column without a role makes no case invalid";
    EXPECT_EQ(ReportHeading::casesJson(session)["withoutNumber"].size(), 2u);
}

TEST(ReportHeading, NotesCellsWithoutNumberOfColumnsWithLongNames)
{
    CaseTable table = cvdCases();
    table.columns[0].name = std::string(250, 'p');
    table.columns[0].withoutNumber.count = 1;
    table.columns[0].withoutNumber.spellings = {"failed"};
    table.columns[0].withoutNumber.firstLine = 3;
    table.columns[0].numbers[1] = std::nan("");
    const CaseSession session(table, {{0, 1}, {3}}, {}, CaseSession::ResponseSurface);

    const std::vector<std::string> notes = ReportHeading::readingNotes(session);
    ASSERT_EQ(notes.size(), 1u);
    EXPECT_LT(notes.front().size(), 600u);
    EXPECT_NE(notes.front().find("(\"failed\", in line 3)"), std::string::npos);
}

TEST(ReportHeading, JsonHasHowTheCasesWereRead)
{
    CaseFileLayout layout;
    layout.encoding = TextEncoding::Windows1252;
    layout.separator = ';';
    layout.hasDecimalComma = true;
    layout.thousandsSeparator = '.';
    layout.titleLines = 1;
    layout.commentLines = 2;
    layout.hasUnitsRow = true;

    EXPECT_EQ(ReportHeading::layoutJson(layout),
              ReportJson::Json::parse(R"({"encoding": "windows-1252", "separator": "semicolon",
        "decimalMark": "comma", "thousandsSeparator": ".", "heading": true,
        "headingInComment": false, "titleLines": 1, "commentLines": 2, "unitsRow": true,
        "rowNames": false, "unitsInCells": [], "errorsInCells": [], "repeatedHeadings": 0,
        "linesBelow": 0})"));
}

TEST(ReportHeading, BeginsReportsWithCasesModelAndInputs)
{
    const ReportJson::Json json = ReportHeading::modelJson(cvdSession());

    EXPECT_EQ(json["schema"], ReportJson::schemaVersion);
    EXPECT_EQ(json["model"], "response-surface");
    EXPECT_EQ(json["terms"], "quadratic");
    EXPECT_EQ(json["selectsTerms"], false);
    EXPECT_EQ(json["inputs"], (std::vector<std::string>{"Pressure", "H2/WF6"}));
    EXPECT_TRUE(json["outputs"].empty());
    EXPECT_FALSE(ReportHeading::modelJson(cvdSession(CaseSession::Kriging)).contains("terms"));
}
