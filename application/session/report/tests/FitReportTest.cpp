#include <session/report/FitReport.h>

#include "CvdSession.h"
#include "ReportValues.h"
#include "SmallTable.h"

#include <mirel_property/tests/TextParts.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace {
using SortedJson = nlohmann::json;

/** As a reader gets it. */
SortedJson printed(const ReportJson::Json& report)
{
    return SortedJson::parse(ReportJson::text(report));
}

using Keys = std::vector<std::string>;
} // namespace

TEST(FitReport, AsJsonHasItsMembersAndNoOthers)
{
    CaseSession session = cvdSession();

    SortedJson json = printed(FitReport::runJson(session, 0.25));

    EXPECT_EQ(keysOf(json), (Keys{"cases", "findings", "inputs", "model", "outputs", "schema",
                                  "seconds", "selectsTerms", "terms"}));
    EXPECT_EQ(json["cases"].erase("layout"), 1u);
    EXPECT_EQ(json["cases"],
              SortedJson::parse(R"({"read": 11, "valid": 11, "excluded": 0, "invalid": 0})"));
    EXPECT_EQ(
        keysOf(json["outputs"][0]),
        (Keys{"anova", "ascent", "calibration", "canonicalDirections", "codedCoefficients",
              "coefficients", "descent", "droppedTerms", "leverage", "metrics", "name", "notes",
              "partialTests", "residuals", "stationaryPoint", "transform", "warnings"}));
    EXPECT_EQ(keysOf(json["outputs"][0]["metrics"]),
              (Keys{"adjustedR2", "aicc", "predictedR2", "press", "r2", "residualDegreesOfFreedom",
                    "rmse", "terms"}));
    EXPECT_EQ(json["outputs"][0]["metrics"]["terms"], 6);
    EXPECT_EQ(json["outputs"][0]["droppedTerms"], SortedJson::array());
    EXPECT_EQ(json["outputs"][0]["metrics"]["residualDegreesOfFreedom"], 5);
    EXPECT_EQ(json["outputs"][1]["name"], "Stress");
    EXPECT_EQ(keysOf(json["seconds"]), (Keys{"evaluate", "fit", "read"}));
    EXPECT_EQ(json["seconds"]["read"], 0.25);
    EXPECT_EQ(json["seconds"]["evaluate"], 0.0);
}

TEST(FitReport, OfKrigingAsJsonHasItsParameters)
{
    CaseSession session(cvdCases(), {{0, 1}, {3}}, {}, CaseSession::Kriging);

    EXPECT_EQ(printed(FitReport::runJson(session, 0.0))["model"], "kriging");
    const SortedJson output = outputIn(session);
    EXPECT_EQ(keysOf(output),
              (Keys{"calibration", "condition", "correlationLengths", "criterion", "lengthBounds",
                    "logLikelihood", "metrics", "name", "noiseDeviation", "notes", "nugget",
                    "nuggetBound", "processVariance", "secondLogLikelihood", "transform", "trend",
                    "trendCoefficients", "warnings", "worstCases"}));
    EXPECT_EQ(output["lengthBounds"].size(), 2u);
    EXPECT_EQ(output["nuggetBound"], "none");
    EXPECT_EQ(keysOf(output["metrics"]), (Keys{"looRmse", "q2", "rmse"}));
    EXPECT_EQ(output["correlationLengths"].size(), 2u);
}

TEST(FitReport, HasTheCalibrationAsJson)
{
    const auto calibration = outputOf(cvdSession())["calibration"];

    EXPECT_EQ(calibration["basis"], "distribution");
    EXPECT_EQ(calibration["factor"], 1.0);
    EXPECT_EQ(calibration["cases"], 11);
    EXPECT_EQ(keysOf(calibration["held"]), (Keys{"50", "80", "95", "99"}));
    EXPECT_EQ(calibration["held"]["99"], 1.0);
}

TEST(FitReport, SaysWhichTransformOfAnOutputWasModelled)
{
    CaseTable table = tableOf({{"x", std::vector<double>(30)}, {"y", std::vector<double>(30)}});
    for (int i = 0; i < 30; ++i) {
        table.columns[0].numbers[i] = i;
        table.columns[1].numbers[i] = std::exp(0.3 * i + std::sin(0.5 * i));
    }
    CaseSession session(std::move(table), {{0}, {1}}, {}, CaseSession::Kriging);

    const auto output = outputIn(session);
    const std::string note = output["notes"][0];

    EXPECT_EQ(output["transform"], "log");
    EXPECT_EQ(note.substr(0, note.find(" (")),
              "The logarithm of y was modelled, which describes the cases better");
    EXPECT_EQ(note.substr(note.find(": ")),
              ": likelihood, variance, nugget, noise, trend and correlation lengths are those of "
              "the logarithm; errors, R2 and Q2 are those of y.");
    EXPECT_TRUE(contains(FitReport::text(session), "\n  Note: " + note + "\n"));
    EXPECT_TRUE(beginsWith(FitReport::notes(session), "Note: " + note + "\n"));
}

TEST(FitReport, SaysWhereLimitsOfThePowerAreBeyondThoseTried)
{
    // Too few cases, of too little variation, to tell any power from another.
    CaseSession session(tableOf({{"x", {0, 1, 2, 3, 4, 5}}, {"y", {10, 12, 11, 13, 12, 14}}}),
                        {{0}, {1}}, {}, CaseSession::ResponseSurface);
    session.choose({{}, {}, TransformSetting::BoxCox});

    const std::string note = outputIn(session)["notes"][0];

    EXPECT_TRUE(contains(note, " (95 %: below -2 to beyond 2)."));
}

TEST(FitReport, NamesThePowerThatSuitsWhereItIsNotOffered)
{
    CaseTable table = tableOf({{"x", {}}, {"y", {}}});
    for (int k = 0; k < 12; ++k) {
        table.columns[0].numbers.push_back(k);
        table.columns[1].numbers.push_back(1.0 / (1.0 + k + (k % 2 == 0 ? 0.02 : -0.02)));
    }
    table.cases = 12;
    CaseSession session(std::move(table), {{0}, {1}}, {}, CaseSession::ResponseSurface);
    session.choose({{}, {}, TransformSetting::BoxCox});

    const std::string note = outputIn(session)["notes"][0];

    EXPECT_TRUE(contains(note,
                         "the nearest was taken. The cases agree with the reciprocal, 1 / y: a "
                         "column of it can be modelled as an output of its own."));
}

TEST(FitReport, SaysWhyFiguresAreMissing)
{
    using Numbers = std::vector<double>;
    const std::string constant = "  Note: The output is the same in all cases: tests and figures "
                                 "that compare with its variation are \"-\".\n";
    struct
    {
        CaseSession::ModelType model;
        Numbers x;
        Numbers y;
        std::string sentence;
    } const rows[] = {
        {CaseSession::ResponseSurface, {0, 1, 2, 3, 4, 5, 6}, Numbers(7, 7.0), constant},
        {CaseSession::Kriging, {0, 1, 2, 3, 4, 5, 6}, Numbers(7, 7.0), constant},
        {CaseSession::ResponseSurface,
         {0, 1, 2},
         {1, 5, 2},
         "  Note: There are as many terms as cases: no case is left to estimate the error from, "
         "and figures that need it are \"-\".\n"},
        {CaseSession::ResponseSurface,
         {0, 1, 2, 3, 5},
         {1, 5, 2, 3, 3},
         "AICc                         not available: 3 coefficients need 6 cases or more\n"}};
    for (const auto& [model, x, y, sentence] : rows) {
        CaseSession session(tableOf({{"x", x}, {"y", y}}), {{0}, {1}}, {}, model);

        const std::string text = FitReport::text(session);

        EXPECT_TRUE(contains(text, sentence));
        EXPECT_FALSE(contains(text, "inf "));
        EXPECT_FALSE(contains(text, "inf\n"));
    }
}

TEST(FitReport, SaysThatTheNuggetIsAtItsBound)
{
    // An output that alternates from case to case is pure noise.
    CaseTable table = tableOf({{"x", std::vector<double>(30)}, {"y", std::vector<double>(30)}});
    for (std::size_t i = 0; i < 30; ++i) {
        table.columns[0].numbers[i] = static_cast<double>(i);
        table.columns[1].numbers[i] = i % 2 == 0 ? 1.0 : -1.0;
    }
    CaseSession session(std::move(table), {{0}, {1}}, {}, CaseSession::Kriging);

    const SortedJson json = printed(FitReport::runJson(session, 0.0));

    EXPECT_EQ(json["outputs"][0]["nuggetBound"], "upper");
    EXPECT_TRUE(contains(FitReport::text(session), "  100 of the process variance (at its upper "
                                                   "bound)\n"));
}

TEST(FitReport, FiguresThatDoNotExistAreNull)
{
    CaseTable table = smallTable();
    table.columns[0].numbers = {1, 1, 1, 1, 1};
    CaseSession session(std::move(table), {{0}, {2}}, {1, 2, 3, 4}, CaseSession::ResponseSurface);

    const SortedJson json = printed(FitReport::runJson(session, 0.0));

    EXPECT_TRUE(json["outputs"][0]["metrics"]["adjustedR2"].is_null());
}

TEST(FitReport, TextHasMetricsAndModel)
{
    CaseSession session(cvdCases(), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);

    const std::string text = FitReport::text(session);

    EXPECT_TRUE(beginsWith(text, "Cases   11 read, 11 valid, 0 excluded, 0 invalid\n"
                                 "Model   response surface\n"
                                 "Inputs  Pressure (V1), H2/WF6 (V2)\n\nUniformity\n  R2 "));
    EXPECT_TRUE(contains(text,
                         "\n  residual degrees of freedom  5\n"
                         "  coefficients                 6\n"
                         "  mean leverage                0.545455\n"
                         "  largest leverages            0.625 of case 3, 0.625 of case 4, "));
}

TEST(FitReport, RanksTheInputs)
{
    CaseSession session = cvdSession(CaseSession::Kriging);
    const std::vector<InputRanking> rankings = {{{1, 1.0}, {0, 0.4231}}, {{0, 1.0}, {1, 0.0}}};

    EXPECT_TRUE(
        contains(FitReport::text(session, rankings),
                 "  ranking of the inputs           H2/WF6 100 %, Pressure 42 % (change along "
                 "each, the others held)\n"));
    EXPECT_EQ(printed(FitReport::runJson(session, 0.0, nullptr, rankings))["outputs"][1]["ranking"]
                  .dump(),
              R"([{"name":"Pressure","share":1.0},{"name":"H2/WF6","share":0.0}])");
}

TEST(FitReport, OfKrigingNamesTheInputOfEachLength)
{
    CaseSession session(cvdCases(), {{0, 1}, {3}}, {}, CaseSession::Kriging);

    const std::string text = FitReport::text(session);

    EXPECT_TRUE(contains(text, "  correlation length of Pressure  "));
    EXPECT_TRUE(contains(text, "  correlation length of H2/WF6    "));
    EXPECT_TRUE(contains(text, " of the process variance\n"));
}

TEST(FitReport, NumbersTheWorstCasesAsTheFileDoes)
{
    CaseTable table = cvdCases();
    const std::vector<double> stress = table.columns[3].numbers;
    // These two take no part, so that the model's rows are not the numbers of the file.
    table.columns[3].numbers[0] = std::nan("");
    CaseSession session(std::move(table), {{0, 1}, {3}}, {4}, CaseSession::Kriging);

    const SortedJson json = printed(FitReport::runJson(session, 0.0));
    const SortedJson& worst = json["outputs"][0]["worstCases"];

    ASSERT_FALSE(worst.empty());
    for (const SortedJson& one : worst) {
        const std::size_t position = one["case"].get<std::size_t>() - 1;
        const bool isRepeated = position == 1 || position == 5 || position == 10;
        EXPECT_TRUE(isRepeated || one["output"] == stress[position]) << one;
    }
    EXPECT_TRUE(contains(FitReport::text(session), "  left out, case "));
}

TEST(FitReport, ShowsTheErrorsOfTheWorstCasesBesideALargeOffset)
{
    CaseTable table = cvdCases();
    for (double& value : table.columns[2].numbers) {
        value += 1e9;
    }
    CaseSession session(std::move(table), {{0, 1}, {2}}, {}, CaseSession::Kriging);

    const std::string text = FitReport::text(session);

    const std::size_t line = text.find("  left out, case ");
    ASSERT_NE(line, std::string::npos) << text;
    EXPECT_EQ(text.find("e+09", line), std::string::npos) << text;
}

TEST(FitReport, HasNoNotesIfNothingWasChangedAndNamesTheVariablesThatLackValues)
{
    CaseSession clean(cvdCases(), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);
    EXPECT_EQ(FitReport::notes(clean), "");

    CaseSession session(smallTable(), {{0}, {2}}, {}, CaseSession::ResponseSurface);

    EXPECT_TRUE(beginsWith(FitReport::notes(session),
                           "Cases: 5 read, 3 valid, 0 excluded, 2 invalid (\xC3\xA4 1, y 1).\n"));
}

TEST(FitReport, WarnsOfPointsOutsideTheCases)
{
    for (const auto model : {CaseSession::ResponseSurface, CaseSession::Kriging}) {
        CaseSession session(cvdCases(), {{0, 1}, {3}}, {}, model);
        session.stayAt(0, "99");
        const GridEvaluation outside = session.evaluate();
        const std::string sentence = "1 of 1 point lies outside the cases: \"Pressure\" is up to "
                                     "0.25 of its range beyond them. Do not rely on predictions "
                                     "there.";

        const std::string notes = FitReport::notes(session, &outside);
        EXPECT_TRUE(contains(notes, "Warning: " + sentence + '\n'));
        EXPECT_EQ(printed(FitReport::runJson(session, 0.0, &outside))["extrapolation"], sentence);
    }
}

TEST(FitReport, NamesTheSelectionOfTermsAndWhatItDropped)
{
    CaseSession session(cvdCases(), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);
    session.choose({{PolynomialTerms::Quadratic, ResponseSurfaceOptions::Selection::BackwardAicc}});

    const std::string text = FitReport::text(session);

    EXPECT_TRUE(contains(text, "Model   response surface, terms selected by AICc\n"));
    EXPECT_TRUE(contains(text,
                         "Note: AICc is lower without \"Pressure\"^2 and \"H2/WF6\"^2: they were "
                         "left out.\n"));
    EXPECT_EQ(SortedJson(outputIn(session)["droppedTerms"]),
              SortedJson::parse(R"([{"term": "V1^2", "name": "Pressure^2"},
                              {"term": "V2^2", "name": "H2/WF6^2"}])"));

    session.choose(
        {{PolynomialTerms::Linear, ResponseSurfaceOptions::Selection::BackwardAicc}});
    EXPECT_TRUE(contains(FitReport::text(session),
                         "\nModel   response surface, linear, terms selected by AICc\n"));
}

TEST(FitReport, SaysWhyThereAreNoLimits)
{
    // Six cases for six terms.
    CaseSession session = cvdSession(CaseSession::ResponseSurface, cvdRoles, {3, 4, 5, 9, 10});
    const GridEvaluation evaluation = session.evaluate(95.0);

    EXPECT_TRUE(contains(FitReport::notes(session, &evaluation),
                         "Warning: " + evaluation.intervalFaults[0] + '\n'));
    const SortedJson json = printed(FitReport::runJson(session, 0.0, &evaluation));
    EXPECT_EQ(json["intervalFaults"].size(), 2u);
}

TEST(FitReport, OfAnExportIsThatOfTheFitWithoutItsTimes)
{
    CaseSession session = cvdSession();
    SortedJson fit = printed(FitReport::runJson(session, 1.0));
    fit.erase("seconds");

    EXPECT_EQ(printed(FitReport::json(session)), fit);
}

TEST(FitReport, SaysOnceWhatHoldsForSeveralOutputs)
{
    CaseSession session(cvdCases(), {{0, 1}, {2, 3}}, {}, CaseSession::Kriging);

    EXPECT_TRUE(beginsWith(FitReport::notes(session),
                           "Note for Uniformity, Stress: At 1 point several cases "
                           "have the same inputs but different outputs: the "
                           "model smooths them.\n"));
}
