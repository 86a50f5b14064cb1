#include <mirel_fitting/kriging/fit/LargeKrigingFit.h>

#include "LargeKrigingTestSupport.h"

#include <mirel_fitting/FitProgress.h>

#include <gtest/gtest.h>

TEST(LargeKrigingFit, GivesNoLikelihood)
{
    const Columns inputs = latinHypercube(700, 3, 3);
    const KrigingFit fit = fitOf(inputs, valuesOf(hill, inputs), manyAreMoreThan(300));

    EXPECT_TRUE(std::isnan(fit.report.logLikelihood));
    EXPECT_TRUE(std::isnan(fit.report.secondLogLikelihood));
    EXPECT_EQ(KrigingTexts::quality(fit).find("og-likelihood"), std::string::npos);
}

TEST(LargeKrigingFit, IsTheTrendAloneWhereThatExplainsAllCases)
{
    Columns inputs = latinHypercube(500, 2, 3);
    const auto plane = [](const std::vector<double>& x) { return 4.0 + 3.0 * x[0] - 2.0 * x[1]; };
    const std::vector<double> output = valuesOf(plane, inputs);
    inputs.emplace_back(500, 7.0);

    const KrigingFit fit = fitOf(inputs, output, manyAreMoreThan(300));

    EXPECT_TRUE(mentions(fit, "The trend passes through all cases"));
    EXPECT_TRUE(mentions(fit, "V3 is constant over the cases and was ignored."));
    EXPECT_NEAR(predicted(fit, {{0.25}, {0.5}, {7.0}})[0], 3.75, 1e-12);
}

TEST(LargeKrigingFit, KeepsLengthsAndNuggetThatAreFixed)
{
    const Columns inputs = latinHypercube(700, 4, 3);
    KrigingFitOptions options = manyAreMoreThan(300);
    options.correlationLengths = {0.7, 0.9, 0.6, 0.8};
    options.nugget = 1e-5;
    options.nuggetMode = KrigingOptions::NuggetMode::Fixed;

    const KrigingFit fit = fitOf(inputs, valuesOf(bowl, inputs), options);

    EXPECT_NEAR(fit.report.correlationLengths[1], 0.9, 1e-12);
    EXPECT_EQ(fit.report.nugget, 1e-5);
}

TEST(LargeKrigingFit, CannotBeDescribedWhereNearCasesAreAsked)
{
    const Columns inputs = latinHypercube(700, 3, 3);
    const KrigingFit fit = fitOf(inputs, valuesOf(hill, inputs), manyAreMoreThan(300));
    ASSERT_TRUE(fit.predictor.model().neighbours);

    try {
        fit.predictor.model().description();
        FAIL();
    } catch (const SurrogateModelInterface::Error& error) {
        EXPECT_STREQ(error.what(),
                     "Each prediction of the model asks for the nearest of its many cases, which "
                     "no exported model holds: leave out cases until no more than 10000 are left, "
                     "or take a response surface.");
    }
}

TEST(LargeKrigingFit, ReportsEveryPartOfTheWork)
{
    const Columns inputs = latinHypercube(700, 3, 3);
    double last = 0.0;
    bool decreases = false;
    std::vector<std::string> messages;
    {
        FitProgress progress([&](double fraction, const std::string& message) {
            decreases = decreases || fraction < last;
            last = fraction;
            if (messages.empty() || messages.back() != message) {
                messages.push_back(message);
            }
            return true;
        });
        fitOf(inputs, valuesOf(hill, inputs), manyAreMoreThan(300));
    }

    EXPECT_FALSE(decreases);
    EXPECT_EQ(last, 1.0);
    for (const char* expected :
         {"Choosing a subset of the cases", "Searching for the correlation lengths",
          "Fitting a subset of the cases", "Estimating from nearest neighbours",
          "Leaving out cases"}) {
        EXPECT_NE(std::find(messages.begin(), messages.end(), expected), messages.end())
            << expected;
    }
}

TEST(LargeKrigingFit, EndsWhereverItIsCancelled)
{
    const Columns inputs = latinHypercube(700, 3, 3);
    const std::vector<double> output = valuesOf(hill, inputs);

    for (const char* during : {"Choosing a subset of the cases", "Fitting a subset of the cases",
                               "Estimating from nearest neighbours", "Leaving out cases"}) {
        FitProgress progress([&](double, const std::string& message) { return message != during; });
        EXPECT_THROW(fitOf(inputs, output, manyAreMoreThan(300)), SurrogateModelInterface::Error)
            << during;
    }
}
