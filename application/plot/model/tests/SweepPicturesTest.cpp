#include <plot/model/SweepPictures.h>

#include "../../../session/tests/MessageOf.h"

#include <plot/model/ConfidenceBand.h>
#include <plot/model/ModelSlice.h>
#include <session/text/SessionErrors.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

namespace {
ModelSlice slice(std::vector<double> pressures, std::vector<double> stresses)
{
    ModelSlice slice;
    slice.modelName = "Kriging";
    slice.inputs = {{"Pressure", std::move(pressures), {}}};
    slice.outputs = {{"Stress", std::move(stresses), {}}};
    slice.swept = {0};
    return slice;
}
} // namespace

TEST(SweepPictures, ShowsEachValueOnceInAscendingOrder)
{
    const SweepPicture picture = sweepPicture(slice({42, 4, 80, 42}, {5, 7, 4, 5}), 0, {});

    EXPECT_EQ(picture.inputs, (std::vector<double>{4, 42, 80}));
    EXPECT_EQ(picture.model, (std::vector<double>{7, 5, 4}));
    EXPECT_EQ(picture.title, "Stress over Pressure, Kriging");
    EXPECT_EQ(picture.inputName, "Pressure");
    EXPECT_EQ(picture.outputName, "Stress");
    EXPECT_EQ(picture.modelLabel, "Kriging");
}

TEST(SweepPictures, HasTheLimitsOfTheBandInTheOrderOfTheInput)
{
    const ConfidenceBand band = {{4, 6.5, 2}, {6, 7.5, 6}, "the band"};

    const SweepPicture picture = sweepPicture(slice({42, 4, 80}, {5, 7, 4}), 0, band);

    EXPECT_EQ(picture.lower, (std::vector<double>{6.5, 4, 2}));
    EXPECT_EQ(picture.upper, (std::vector<double>{7.5, 6, 6}));
    EXPECT_EQ(picture.bandLabel, "the band");

    const SweepPicture without = sweepPicture(slice({4, 80}, {7, 4}), 0, {});

    EXPECT_TRUE(without.lower.empty());
    EXPECT_TRUE(without.upper.empty());
    EXPECT_EQ(without.bandLabel, "");
}

TEST(SweepPictures, ShowsTheCasesNearTheSlice)
{
    ModelSlice sweep = slice({4, 80}, {7, 4});
    sweep.inputs[0].caseValues = {50};
    sweep.outputs[0].caseValues = {6};
    sweep.fittedCases = 9;

    const SweepPicture picture = sweepPicture(sweep, 0, {});

    EXPECT_EQ(picture.caseInputs, std::vector<double>{50});
    EXPECT_EQ(picture.caseOutputs, std::vector<double>{6});
    EXPECT_EQ(picture.caseLabel, "cases");
}

TEST(SweepPictures, RefusesOneValueOfTheSweptInputAndThoseThatNoAxisCanShow)
{
    EXPECT_EQ(messageOf<UsageError>([] {
                  sweepPicture(slice({42, 42}, {5, 5}), 0, {});
              }),
              "The picture needs at least two different values of \"Pressure\".");

    const double infinity = std::numeric_limits<double>::infinity();

    EXPECT_EQ(messageOf<SurrogateModelInterface::Error>([&] {
                  sweepPicture(slice({4, 80}, {7, infinity}), 0, {});
              }),
              "The model of \"Stress\" holds values that are not finite, or too large to be "
              "drawn.");
    EXPECT_THROW(sweepPicture(slice({4, 1.6e308}, {7, 4}), 0, {}), SurrogateModelInterface::Error);
}
