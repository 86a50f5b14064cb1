#include <mirel_fitting/cases/ArgumentCheck.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <string>

using namespace fittingtest;

namespace {

/** Two inputs and two outputs of three cases; a test spoils what it is about. */
class ArgumentCheck : public testing::Test
{
protected:
    std::vector<double> v1{1, 2, 3}, v2{4, 5, 6}, y0{7, 8, 9}, y1{10, 11, 12};
    std::vector<double*> independents{v1.data(), v2.data()};
    std::vector<double*> dependents{y0.data(), y1.data()};
    std::vector<double> out{0, 0, 0};

    ::ArgumentCheck make(std::size_t rows = 3) const { return {independents, dependents, rows}; }
    std::string refusal() const
    {
        return errorOf([this] { make(); });
    }
};

TEST_F(ArgumentCheck, CountsInputsOutputsAndCases)
{
    const ::ArgumentCheck columns = make();

    EXPECT_EQ(columns.inputs(), 2u);
    EXPECT_EQ(columns.outputs(), 2u);
    EXPECT_EQ(columns.cases(), 3u);
}

TEST_F(ArgumentCheck, RefusesNoCasesAndMoreThanAColumnHolds)
{
    EXPECT_EQ(errorOf([this] { make(static_cast<std::size_t>(-1)); }),
              "The model cannot be fitted to 18446744073709551615 cases: no column can hold so "
              "many.");

    independents = {nullptr};
    EXPECT_EQ(errorOf([this] { make(0); }), "There is no case to fit the model to.");
}

TEST_F(ArgumentCheck, NamesANullColumn)
{
    dependents[1] = nullptr;
    EXPECT_EQ(refusal(), "The output at offset 1 has no column of values.");

    independents[1] = nullptr;
    EXPECT_EQ(refusal(), "The input V2 has no column of values.");
}

TEST_F(ArgumentCheck, NamesTheCaseInWhichAnInputIsNotFinite)
{
    v2[2] = notANumber;
    EXPECT_EQ(refusal(), "The input V2 holds a value that is not finite in case 3.");
    v2[2] = 6.0;
    v1[0] = -infinity;
    EXPECT_EQ(refusal(), "The input V1 holds a value that is not finite in case 1.");
}

TEST_F(ArgumentCheck, RefusesAnOutputThatIsNotFiniteOnlyWhenItIsWanted)
{
    y1[1] = infinity;
    const ::ArgumentCheck columns = make();

    EXPECT_TRUE(columns.isFittable(0));
    EXPECT_FALSE(columns.isFittable(1));
    EXPECT_NO_THROW(columns.requireOutputs({0}));
    EXPECT_EQ(errorOf([&] {
                  columns.requireOutputs({0, 1});
              }),
              "The output at offset 1 holds a value that is not finite in case 2.");
}

TEST_F(ArgumentCheck, RefusesAnOffsetOutOfRange)
{
    const ::ArgumentCheck columns = make();

    EXPECT_EQ(errorOf([&] { columns.requireOutput(2); }),
              "There is no output at offset 2: the model has 2 outputs, counted from 0.");
    EXPECT_EQ(errorOf([&] { columns.requireOutput(-1); }),
              "There is no output at offset -1: the model has 2 outputs, counted from 0.");
}

TEST_F(ArgumentCheck, AcceptsNoOffsetsAtAll)
{
    EXPECT_NO_THROW(make().requireOutputs({}));
    EXPECT_NO_THROW(make().requireEvaluation({v1.data(), v2.data()}, {}, {}, 3));
}

TEST_F(ArgumentCheck, RefusesAnotherNumberOfInputsOrOutputs)
{
    EXPECT_EQ(errorOf([&] { make().requireEvaluation({v1.data()}, {0}, {out.data()}, 3); }),
              "The model has 2 inputs, but values are given for 1.");

    EXPECT_EQ(errorOf([&] {
                  make().requireEvaluation({v1.data(), v2.data()}, {0, 1}, {out.data()}, 3);
              }),
              "The model is asked for 2 outputs, but there is room for 1.");
}

TEST_F(ArgumentCheck, RefusesNullArraysOnlyWhenThereArePoints)
{
    const ::ArgumentCheck columns = make();

    EXPECT_NO_THROW(columns.requireEvaluation({nullptr, nullptr}, {1}, {nullptr}, 0));
    EXPECT_EQ(errorOf([&] {
                  columns.requireEvaluation({v1.data(), nullptr}, {1}, {out.data()}, 3);
              }),
              "The input V2 has no values to evaluate the model at.");
    EXPECT_EQ(errorOf([&] {
                  columns.requireEvaluation({v1.data(), v2.data()}, {1}, {nullptr}, 3);
              }),
              "The output at offset 1 has no room for its values.");
}

TEST_F(ArgumentCheck, FindsTheFirstNotFiniteValueWhereverItIs)
{
    std::vector<double> values(7, 1e308);
    EXPECT_TRUE(::ArgumentCheck({}, {values.data()}, 7).isFittable(0));

    for (std::size_t position = 0; position < 7; ++position) {
        values.assign(7, -1e308);
        values[position] = notANumber;
        values[6] = infinity;
        const ::ArgumentCheck check({}, {values.data()}, 7);
        EXPECT_EQ(errorOf([&] { check.requireOutput(0); }),
                  "The output at offset 0 holds a value that is not finite in case " +
                      std::to_string(position + 1) + ".");
    }
}

} // namespace
