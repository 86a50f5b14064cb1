#include <mirel_modelexport/SourceTerms.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr std::size_t noFactor = PredictorDescription::noFactor;

using Texts = std::vector<std::string>;

/** 1 + 2 x_0 - 3 x_0^2 + 4 x_0 x_1 + 5 x_1 */
PredictorDescription someTerms()
{
    PredictorDescription predictor;
    predictor.coordinates.resize(2);
    predictor.terms = {{noFactor, noFactor, 1.0},
                       {0, noFactor, 2.0},
                       {0, 0, -3.0},
                       {0, 1, 4.0},
                       {1, noFactor, 5.0}};
    return predictor;
}

} // namespace

TEST(SourceTerms, AreProductsInTheOrderOfTheDescriptionOrNested)
{
    EXPECT_EQ(productTerms(someTerms()), (Texts{"1.0", "2.0 * x[0]", "-3.0 * x[0] * x[0]",
                                                "4.0 * x[0] * x[1]", "5.0 * x[1]"}));
    EXPECT_EQ(nestedTerms(someTerms()),
              (Texts{"x[0] * (2.0 - 3.0 * x[0] + 4.0 * x[1])", "x[1] * (5.0)"}));
}

TEST(SourceTerms, HaveNoFactorsInAConstant)
{
    PredictorDescription constant;
    constant.terms = {{noFactor, noFactor, 1.0}};

    EXPECT_FALSE(hasFactors(constant));
    EXPECT_TRUE(nestedTerms(constant).empty());
    EXPECT_TRUE(hasFactors(someTerms()));
    EXPECT_FALSE(needsCoordinates(constant));
    EXPECT_TRUE(needsCoordinates(someTerms()));
    constant.weights = {1.0};
    EXPECT_TRUE(needsCoordinates(constant));
}

TEST(SourceTerms, AreCorrelatedWithCasesIfAnyOutputHasThem)
{
    ExportedModel model;
    model.outputs.resize(2);
    EXPECT_FALSE(hasCorrelation(model));

    model.outputs[1].model.predictor.weights = {1.0};
    EXPECT_TRUE(hasCorrelation(model));
}

TEST(SourceTerms, WriteTheOutputOfATransformAsTheLanguageHasIt)
{
    const auto written = [](OutputTransform transform) {
        return outputOf(transform, "1.0 + sum", "EXP(%)", "MAX(0,%)^2");
    };

    EXPECT_EQ(written(OutputTransform::None), "1.0 + sum");
    EXPECT_EQ(written(OutputTransform::Logarithm), "EXP(1.0 + sum)");
    EXPECT_EQ(written(OutputTransform::SquareRoot), "MAX(0,1.0 + sum)^2");
}
