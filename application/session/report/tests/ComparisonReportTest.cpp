#include <session/report/ComparisonReport.h>

#include "CvdSession.h"

#include <session/comparison/ModelComparison.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <utility>

namespace {
using Json = nlohmann::ordered_json;

/** As it could have come out, with a fit that failed. */
ModelComparison sampleComparison()
{
    ModelComparison comparison;
    comparison.folds = 5;
    comparison.seconds = 0.5;
    comparison.outputs.resize(1);
    OutputComparison& output = comparison.outputs[0];
    output.name = "Stress";
    output.responseSurface.cases = 9;
    output.responseSurface.q2 = 0.75;
    output.responseSurface.rmse = 0.5;
    output.responseSurface.largestError = 1.25;
    output.responseSurface.largestErrorCase = 4;
    output.responseSurface.held95 = 0.943;
    output.responseSurface.looRmse = 0.375;
    output.responseSurface.transforms = {{OutputTransform::None, 5}};
    output.responseSurface.fitSeconds = 0.0001;
    output.responseSurface.remarks = {"It has fewer terms."};
    output.kriging = output.responseSurface;
    output.kriging.remarks.clear();
    output.kriging.transform = OutputTransform::Logarithm;
    output.kriging.transforms = {{OutputTransform::Logarithm, 3}};
    output.kriging.kriging.emplace();
    output.kriging.kriging->criterion = KrigingReport::Criterion::PenalisedRestrictedLikelihood;
    output.kriging.kriging->trendTerms = {"1", "V1"};
    output.kriging.q2 = 0.5;
    output.kriging.held95 = 1.0;
    output.kriging.failures = {{2, "There is a fault."}, {3, "There is another."}};
    output.errors = {5, -0.125, 0.25, 0.64, 7, 2};
    output.verdict = OutputComparison::Either;
    output.recommendation = "Take either.";
    return comparison;
}

/** As a reader gets it. */
Json printed(const ModelComparison& comparison)
{
    return Json::parse(ReportJson::text(ComparisonReport::json(cvdSession(), comparison, 0.25)));
}
} // namespace

TEST(ComparisonReport, TextIsATableAndASentencePerOutput)
{
    EXPECT_EQ(
        ComparisonReport::text(cvdSession(), sampleComparison()),
        "Cases   11 read, 11 valid, 0 excluded, 0 invalid\n"
        "Inputs  Pressure, H2/WF6\n"
        "Folds   5, each predicted by models of the cases of all others\n"
        "Kriging by restricted likelihood, penalised lengths\n"
        "\n"
        "Stress\n"
        "  Model               Q2  Cross-validated RMSE  Largest error  At case  Seconds a fit\n"
        "  response surface  0.75                   0.5           1.25        5         0.0001\n"
        "  Kriging            0.5                   0.5           1.25        5         0.0001\n"
        "  Take either.\n"
        "  The 95 % intervals held 94.3 % (response surface), 100 % (Kriging) of the left-out "
        "cases.\n"
        "  Warning: The response surface: It has fewer terms.\n"
        "  Note: Kriging models the logarithm of Stress.\n"
        "  Warning: Kriging cannot be fitted in 2 of 5 folds, whose cases are left out of all "
        "figures; in fold 3: There is a fault.\n");
}

TEST(ComparisonReport, FiguresThatDoNotExistAreADashAndNull)
{
    ModelComparison comparison = sampleComparison();
    comparison.outputs[0].kriging = CrossValidationMetrics();

    const std::string text = ComparisonReport::text(cvdSession(), comparison);
    EXPECT_NE(text.find("\n  Kriging              -                     -              -        -  "
                        "            -\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(
        printed(comparison)["outputs"][0]["models"][1].dump(),
        R"({"model":"kriging","transform":"none","foldTransforms":{},"cases":0,"q2":null,"rmse":null,"largestError":null,)"
        R"("largestErrorCase":null,"held95":null,"looRmse":null,"fitSeconds":null,"failures":[],"warnings":[]})");
}

TEST(ComparisonReport, SaysWhereFoldsChooseAnotherTransform)
{
    ModelComparison comparison = sampleComparison();
    comparison.outputs[0].kriging.transforms = {{OutputTransform::None, 1},
                                                {OutputTransform::Logarithm, 4}};

    const std::string text = ComparisonReport::text(cvdSession(), comparison);

    EXPECT_NE(
        text.find("  Note: Kriging models Stress itself in 1, the logarithm of Stress in 4 of "
                  "the folds, and with all cases the logarithm of Stress.\n"),
        std::string::npos)
        << text;
}

TEST(ComparisonReport, JsonHasItsMembersAndNoOthers)
{
    Json json = printed(sampleComparison());

    EXPECT_EQ(json["cases"].erase("layout"), 1u);
    EXPECT_EQ(
        json.dump(),
        R"({"schema":1,"cases":{"read":11,"valid":11,"excluded":0,"invalid":0},)"
        R"("inputs":["Pressure","H2/WF6"],"folds":5,"outputs":[{"name":"Stress","models":[)"
        R"({"model":"response-surface","transform":"none","foldTransforms":{"none":5},"cases":9,"q2":0.75,"rmse":0.5,"largestError":1.25,)"
        R"("largestErrorCase":5,"held95":0.943,"looRmse":0.375,"fitSeconds":0.0001,"failures":[],)"
        R"("warnings":["It has fewer terms."]},)"
        R"({"model":"kriging","transform":"log","foldTransforms":{"log":3},"cases":9,"q2":0.5,"rmse":0.5,"largestError":1.25,)"
        R"("largestErrorCase":5,"held95":1.0,"looRmse":0.375,"fitSeconds":0.0001,"failures":[)"
        R"({"fold":3,"message":"There is a fault."},)"
        R"({"fold":4,"message":"There is another."}],"warnings":[],)"
        R"("criterion":"penalisedRestrictedLikelihood","trend":["1","V1"]}],)"
        R"("difference":{"logRmseRatio":-0.125,"standardError":0.25,"p":0.64,"folds":5,)"
        R"("nearer":{"response-surface":7,"kriging":2}},)"
        R"("recommended":"either","confidence":"none","recommendation":"Take either."}],)"
        R"("terms":"quadratic","selectsTerms":false,)"
        R"("seconds":{"read":0.25,"compare":0.5}})");
}

TEST(ComparisonReport, JsonSaysHowClearAVerdictIs)
{
    ModelComparison comparison = sampleComparison();
    comparison.outputs[0].verdict = OutputComparison::Kriging;
    const auto confidence = [&](bool isClear) {
        comparison.outputs[0].isClear = isClear;
        return printed(comparison)["outputs"][0]["confidence"];
    };

    EXPECT_EQ(confidence(true), "clear");
    EXPECT_EQ(confidence(false), "lean");
}

TEST(ComparisonReport, NamesEachVerdict)
{
    ModelComparison comparison = sampleComparison();
    const std::pair<OutputComparison::Verdict, const char*> verdicts[] = {
        {OutputComparison::ResponseSurface, "response-surface"},
        {OutputComparison::Kriging, "kriging"},
        {OutputComparison::Either, "either"},
        {OutputComparison::Neither, "neither"}};
    for (const auto& [verdict, word] : verdicts) {
        comparison.outputs[0].verdict = verdict;
        EXPECT_EQ(printed(comparison)["outputs"][0]["recommended"], word);
    }
}
