#include <plot/model/ContourPictures.h>

#include <plot/model/ModelSlice.h>
#include <session/text/SessionErrors.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {
/** Typed in no order; a value says where it belongs. */
ModelSlice grid()
{
    ModelSlice slice;
    slice.modelName = "response surface";
    slice.inputs = {{"Pressure", {80, 80, 4, 4, 42, 42}, {50}},
                    {"Power", {7, 7, 7, 7, 7, 7}, {7}},
                    {"Ratio", {2, 10, 2, 10, 2, 10}, {5}}};
    slice.outputs = {{"Stress", {802, 8010, 42, 410, 422, 4210}, {6}}};
    slice.swept = {0, 2};
    slice.fittedCases = 11;
    return slice;
}
} // namespace

TEST(ContourPictures, HaveTheGridOfTheSweptInputs)
{
    const ContourPicture picture = contourPicture(grid(), 0);

    EXPECT_EQ(picture.title, "Stress over Pressure and Ratio, response surface");
    EXPECT_EQ(picture.xName, "Pressure");
    EXPECT_EQ(picture.yName, "Ratio");
    EXPECT_EQ(picture.x, (std::vector<double>{4, 42, 80}));
    EXPECT_EQ(picture.y, (std::vector<double>{2, 10}));
    EXPECT_EQ(picture.values, (std::vector<double>{42, 410, 422, 4210, 802, 8010}));
    EXPECT_EQ(picture.caseX, std::vector<double>{50});
    EXPECT_EQ(picture.caseY, std::vector<double>{5});
    EXPECT_EQ(picture.caseLabel, "cases near (1 of 11)");
    EXPECT_EQ(picture.caption,
              "At Power = 7. Near: all held inputs within 10\302\240% of their range.");
}

TEST(ContourPictures, MarkTheLeastAndTheLargestValue)
{
    const ContourPicture picture = contourPicture(grid(), 0);

    ASSERT_EQ(picture.extremes.size(), 2u);
    EXPECT_EQ(picture.extremes[0].value, 42.0);
    EXPECT_EQ(picture.extremes[0].x, 4.0);
    EXPECT_EQ(picture.extremes[0].y, 2.0);
    EXPECT_EQ(picture.extremes[1].value, 8010.0);
    EXPECT_EQ(picture.extremes[1].x, 80.0);
    EXPECT_EQ(picture.extremes[1].y, 10.0);
    ModelSlice constant = grid();
    constant.outputs[0].values.assign(6, 3.0);
    EXPECT_TRUE(contourPicture(constant, 0).extremes.empty());
}

TEST(ContourPictures, HaveTheFlagsOfTheirValues)
{
    ModelSlice slice = grid();
    EXPECT_TRUE(contourPicture(slice, 0).isOutside.empty());
    slice.isOutside = {0, 1, 0, 0, 0, 0};

    EXPECT_EQ(contourPicture(slice, 0).isOutside, (std::vector<char>{0, 0, 0, 0, 0, 1}));
}

TEST(ContourPictures, CountRepeatedCases)
{
    ModelSlice slice = grid();
    slice.inputs[0].caseValues = {50, 60, 50, 50};
    slice.inputs[2].caseValues = {5, 5, 5, 6};

    const ContourPicture picture = contourPicture(slice, 0);

    EXPECT_EQ(picture.caseX, (std::vector<double>{50, 60, 50}));
    EXPECT_EQ(picture.caseY, (std::vector<double>{5, 5, 6}));
    EXPECT_EQ(picture.caseCounts, (std::vector<std::size_t>{2, 1, 1}));
}

TEST(ContourPictures, RefuseOneValueOfASweptInput)
{
    ModelSlice slice = grid();
    slice.inputs[2].values.assign(6, 2.0);

    EXPECT_THROW(contourPicture(slice, 0), UsageError);
}

TEST(ContourPictures, RefuseValuesThatNoAxisCanShow)
{
    ModelSlice slice = grid();
    slice.outputs[0].values[3] = std::nan("");

    EXPECT_THROW(contourPicture(slice, 0), SurrogateModelInterface::Error);
}
