#include <mirel_fitting/kriging/report/KrigingWarnings.h>

#include <gtest/gtest.h>

TEST(KrigingWarnings, CountsOneAndMany)
{
    EXPECT_EQ(KrigingWarnings::ofCopies(1, true),
              "1 case repeats another case exactly and was merged with it.");
    EXPECT_EQ(KrigingWarnings::ofCopies(3, true),
              "3 cases repeat another case exactly and were merged with it.");
    EXPECT_EQ(KrigingWarnings::ofTooFewCases(1, 0, 1),
              "The order of the trend was lowered from 1 to 0: 1 distinct case is too few for "
              "more.");
    EXPECT_EQ(KrigingWarnings::ofTooFewCases(2, 1, 6),
              "The order of the trend was lowered from 2 to 1: 6 distinct cases are too few for "
              "more.");
}

TEST(KrigingWarnings, SaysWhatBecameOfRepeatedCases)
{
    EXPECT_EQ(KrigingWarnings::ofCopies(1, false),
              "1 case repeats another case exactly and was counted as measured again, since other "
              "cases with the same inputs have different outputs.");
    EXPECT_EQ(KrigingWarnings::ofReplicatesThatDiffer(2, true),
              "At 2 points several cases have the same inputs but different outputs: the model "
              "passes through their mean.");
    EXPECT_EQ(KrigingWarnings::ofReplicatesThatDiffer(1, false),
              "At 1 point several cases have the same inputs but different outputs: the model "
              "smooths them.");
    EXPECT_EQ(KrigingWarnings::ofContradictions(1),
              "At 1 place cases lie next to each other (less than 1e-09 of the range of every "
              "input apart) but have different outputs: the model smooths them.");
}

TEST(KrigingWarnings, SaysWhichPartOfTheCasesWasUsedAndWhyTheTrendIsConstant)
{
    EXPECT_EQ(KrigingWarnings::ofSubset(5000, 2500, true),
              "There are more than 5000 distinct cases: the model is the exact one of all of them, "
              "with the correlation lengths of 2500 cases spread over all, refined with all.");
    EXPECT_EQ(KrigingWarnings::ofSubset(5000, 2500, false),
              "There are more than 5000 distinct cases: the model is the exact one of all of them, "
              "with the correlation lengths of 2500 cases spread over all.");
    EXPECT_EQ(KrigingWarnings::ofSample(5000),
              "The figures of errors are those of a random sample of 5000 distinct cases.");
    EXPECT_EQ(
        KrigingWarnings::ofSmoothOutput(1, 30),
        "The order of the trend was lowered from 1 to 0: the cases show no noise, and from 30 "
        "distinct cases a constant trend predicts a smooth output better.");
}

TEST(KrigingWarnings, SaysWhichLayersTheModelOfManyCasesHas)
{
    EXPECT_EQ(KrigingWarnings::ofManyCases(10000, {9000, 60, true, 0.5, 0.75}),
              "There are more than 10000 distinct cases: the model is that of 9000 cases spread "
              "over all of them, corrected by Kriging from the 60 nearest cases of each point; "
              "left-out cases are predicted with an error of 0.5 instead of 0.75 without.");
    EXPECT_EQ(KrigingWarnings::ofManyCases(10000, {9000, 60, false, 0.5, 0.75}),
              "There are more than 10000 distinct cases: the model is Kriging from the 60 nearest "
              "cases of each point; left-out cases are predicted with an error of 0.5 instead of "
              "0.75 by a model of 9000 cases.");
    EXPECT_EQ(KrigingWarnings::ofManyCases(10000, {9000, 0, true, 0.75, 0.75}),
              "There are more than 10000 distinct cases: the model is that of 9000 cases spread "
              "over all of them, which the nearest cases of each point could not improve.");
}

TEST(KrigingWarnings, NamesInputsTermsAndNuggets)
{
    EXPECT_EQ(KrigingWarnings::ofConstantInputs({1}),
              "V2 is constant over the cases and was ignored.");
    EXPECT_EQ(KrigingWarnings::ofDroppedTerms({{0}, {1, 2}}),
              "Terms of the trend that the cases cannot separate were dropped: V1 and V2 V3.");
    const InputNames names({"Pressure", "Ratio"});
    EXPECT_EQ(KrigingWarnings::ofConstantInputs({1}, names),
              "\"Ratio\" is constant over the cases and was ignored.");
    EXPECT_EQ(KrigingWarnings::ofConstantInputs({0, 1}, names),
              "\"Pressure\" and \"Ratio\" are constant over the cases and were ignored.");
    EXPECT_EQ(KrigingWarnings::ofDroppedTerms({{0, 0}, {0, 1}}, names),
              "Terms of the trend that the cases cannot separate were dropped: \"Pressure\"^2 "
              "and \"Pressure\" * \"Ratio\".");
    EXPECT_EQ(KrigingWarnings::ofRaisedNugget(1e-10),
              "The nugget was raised to 1e-10: with less the correlation matrix cannot be "
              "factorised.");
}
