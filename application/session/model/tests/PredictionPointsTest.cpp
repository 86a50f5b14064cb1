#include <session/model/PredictionPoints.h>

#include "MessageOf.h"
#include "TemporaryFolder.h"

#include <session/cases/CaseFileReader.h>
#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {
CaseTable tableOf(const std::string& content)
{
    const TemporaryFolder folder;
    CaseFileReader::Options options;
    options.keepCells = true;
    CaseTable table = CaseFileReader::read(folder.write("points.csv", content), options);
    table.path = "points.csv";
    return table;
}

std::string refusalOf(const std::string& content,
                      PredictionPoints::Results results = PredictionPoints::Predictions)
{
    return messageOf<CaseDataError>([&] {
        PredictionPoints(tableOf(content), {"x", "z"}, {"y"}, results);
    });
}
} // namespace

TEST(PredictionPoints, FindTheInputsByNameInWhateverOrder)
{
    const PredictionPoints points(tableOf("z,note,x\n1,a,2\n3,b,4\n"), {"x", "z"}, {"y"});

    EXPECT_EQ(points.count(), 2u);
    ASSERT_EQ(points.inputColumns().size(), 2u);
    EXPECT_EQ(points.inputColumns()[0][1], 4.0);
    EXPECT_EQ(points.inputColumns()[1][0], 1.0);
}

TEST(PredictionPoints, AddTheResultsToTheTableAsItWas)
{
    const PredictionPoints points(tableOf("z,note,x\n1,a,2\n"), {"x", "z"}, {"y"});
    const std::vector<std::vector<double>> predictions = {{7.5}};

    const OutputTable table = points.withPredictions(predictions);

    ASSERT_EQ(table.columns.size(), 4u);
    EXPECT_EQ(table.rows, 1u);
    EXPECT_EQ(table.columns[1].name, "note");
    EXPECT_EQ(table.columns[1].numbers, nullptr);
    EXPECT_EQ(table.columns[3].name, "y predicted");
    EXPECT_EQ(table.columns[3].numbers[0], 7.5);
}

TEST(PredictionPoints, AreRefusedWithTheLine)
{
    const auto hasColumn = [](const std::string& name) {
        return "points.csv, line 1: the table has a column \"" + name + "\" already.";
    };
    const auto limits = PredictionPoints::PredictionsAndLimits;
    EXPECT_EQ(
        refusalOf("Z,x\n1,2\n"),
        "points.csv, line 1: the model needs the input \"z\". There is no variable \"z\"; the "
        "nearest name is \"Z\". The variables are: \"Z\", \"x\".");
    EXPECT_EQ(refusalOf("x,z\n1,2\n1,2..5\n1,3..5\n"),
              "points.csv, line 3: the input \"z\" must be a number, not \"2..5\".");
    EXPECT_EQ(refusalOf("x,z,y predicted\n1,2,3\n"), hasColumn("y predicted"));
    EXPECT_EQ(refusalOf("x,z,y lower\n1,2,3\n", limits), hasColumn("y lower"));
    EXPECT_EQ(refusalOf("x,z,y upper\n1,2,3\n", limits), hasColumn("y upper"));
    EXPECT_EQ(refusalOf("x,z,y lower,y upper\n1,2,3,4\n"), "accepted") << "without limits";
}

TEST(PredictionPoints, PointsWithoutANumberAreReported)
{
    const PredictionPoints points(tableOf("z,x\n1,2\n1,off\n1,3\n"), {"x", "z"}, {"y"});

    EXPECT_TRUE(std::isnan(points.inputColumns()[0][1]));
    EXPECT_EQ(points.notes(),
              (std::vector<std::string>{
                  "x: 1 cell is no number (\"off\", in line 3): this point has no prediction."}));
}

TEST(PredictionPoints, LimitsFollowThePredictionOfTheirOutput)
{
    const PredictionPoints points(tableOf("z,x\n1,2\n"), {"x", "z"}, {"y", "w"},
                                  PredictionPoints::PredictionsAndLimits);
    const std::vector<std::vector<double>> predictions = {{7.5}, {8.5}};
    const std::vector<PredictionIntervals> limits = {{{7}, {8}}, {{6}, {9}}};

    const OutputTable table = points.withPredictions(predictions, limits);

    std::vector<std::string> names;
    for (const OutputTable::Column& column : table.columns) {
        names.push_back(column.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"z", "x", "y predicted", "y lower", "y upper",
                                               "w predicted", "w lower", "w upper"}));
    EXPECT_EQ(table.columns[3].numbers[0], 7.0);
    EXPECT_EQ(table.columns[7].numbers[0], 9.0);
}
