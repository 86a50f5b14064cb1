#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <thread>

TEST(FitProgress, IsNotNeededByAFit)
{
    EXPECT_NO_THROW(FitProgress::report(0.5, "searching"));
}

TEST(FitProgress, ReceivesTheFractionAndTheMessage)
{
    double seen = -1.0;
    std::string text;
    FitProgress progress([&](double fraction, const std::string& message) {
        seen = fraction;
        text = message;
        return true;
    });

    FitProgress::report(0.25, "searching");

    EXPECT_EQ(seen, 0.25);
    EXPECT_EQ(text, "searching");
}

TEST(FitProgress, CancelsTheFitWithAnErrorWhenItAnswersFalse)
{
    FitProgress progress([](double, const std::string&) { return false; });

    EXPECT_THROW(FitProgress::report(0.0, ""), SurrogateModelInterface::Error);
}

TEST(FitProgress, IsReplacedByANewerOneUntilThatEnds)
{
    int outer = 0;
    int inner = 0;
    FitProgress first([&](double, const std::string&) { return ++outer > 0; });
    {
        FitProgress second([&](double, const std::string&) { return ++inner > 0; });
        FitProgress::report(0.0, "");
    }
    FitProgress::report(0.0, "");

    EXPECT_EQ(inner, 1);
    EXPECT_EQ(outer, 1);
}

TEST(FitProgress, ReceivesReportsOfItsOwnThreadOnly)
{
    int calls = 0;
    FitProgress progress([&](double, const std::string&) { return ++calls > 0; });

    std::thread([] { FitProgress::report(0.0, ""); }).join();

    EXPECT_EQ(calls, 0);
}

TEST(FitProgress, CountsTheWorkOfAPortionWithoutReachingItsEnd)
{
    std::vector<double> fractions;
    std::vector<std::string> messages;
    FitProgress progress([&](double fraction, const std::string& message) {
        fractions.push_back(fraction);
        messages.push_back(message);
        return true;
    });
    const FitProgress::Portion second(0.5, 1.0, "searching", 100.0);
    FitProgress::advance();
    FitProgress::advance(50.0);
    FitProgress::advance(1e30);

    ASSERT_EQ(fractions.size(), 3u);
    EXPECT_EQ(fractions[0], 0.5);
    EXPECT_GT(fractions[1], 0.75);
    EXPECT_LT(fractions[1], 0.9);
    EXPECT_GT(fractions[2], 0.95);
    EXPECT_LT(fractions[2], 1.0);
    EXPECT_EQ(messages, std::vector<std::string>(3, "searching"));
}

TEST(FitProgress, ReportsWorkInPartsOfANamedPortionAtTheirBeginning)
{
    double seen = -1.0;
    std::string text;
    FitProgress progress([&](double fraction, const std::string& message) {
        seen = fraction;
        text = message;
        return true;
    });
    const FitProgress::Portion named(0.0, 0.5, "searching");
    const FitProgress::Portion part(0.5, 1.0);

    FitProgress::advance(10.0);

    EXPECT_EQ(seen, 0.25);
    EXPECT_EQ(text, "searching");
}

TEST(FitProgress, RepeatsTheLastFractionWhereTheWorkIsUnknown)
{
    std::vector<double> fractions;
    FitProgress progress([&](double fraction, const std::string&) {
        fractions.push_back(fraction);
        return true;
    });
    const FitProgress::Portion portion(0.5, 1.0, "passing over the cases");
    FitProgress::advance();
    FitProgress::report(0.5, "");
    FitProgress::advance();

    EXPECT_EQ(fractions, (std::vector<double>{0.5, 0.75, 0.75}));
}

TEST(FitProgress, DoesNotGoBackBetweenThePartsOfAPortion)
{
    double last = -1.0;
    FitProgress progress([&](double fraction, const std::string&) {
        last = fraction;
        return true;
    });
    const FitProgress::Portion whole(0.0, 1.0, "fitting");
    {
        const FitProgress::Portion part(0.0, 0.5);
        FitProgress::report(0.8, "searching");
    }

    FitProgress::advance();

    EXPECT_DOUBLE_EQ(last, 0.4);
}

TEST(FitProgress, IsSilentAboutWorkThatBelongsToNoFit)
{
    int calls = 0;
    FitProgress progress([&](double, const std::string&) { return ++calls > 0; });

    FitProgress::advance(1.0);

    EXPECT_EQ(calls, 0);
}

TEST(FitProgress, CancelsDuringTheWorkOfAPortion)
{
    FitProgress progress([](double, const std::string&) { return false; });
    const FitProgress::Portion portion(0.0, 1.0, "searching");

    EXPECT_THROW(FitProgress::advance(1.0), SurrogateModelInterface::Error);
}

TEST(FitProgress, ReportsThePortionsOfAFitAsPartsOfTheWhole)
{
    std::vector<double> fractions;
    FitProgress progress([&](double fraction, const std::string&) {
        fractions.push_back(fraction);
        return true;
    });
    {
        const FitProgress::Portion second(0.5, 1.0);
        FitProgress::report(0.0, "");
        const FitProgress::Portion itsFirst(0.0, 0.5);
        FitProgress::report(1.0, "");
    }
    FitProgress::report(0.875, "");

    EXPECT_EQ(fractions, (std::vector<double>{0.5, 0.75, 0.875}));
}

TEST(FitProgress, ReceivesFractionsOfTheWholeFromAFitWithinAReport)
{
    std::vector<double> outerFractions;
    std::vector<double> innerFractions;
    FitProgress outer([&](double fraction, const std::string&) {
        FitProgress inner([&](double ofInner, const std::string&) {
            innerFractions.push_back(ofInner);
            return true;
        });
        FitProgress::report(0.5, "");
        outerFractions.push_back(fraction);
        return true;
    });
    {
        const FitProgress::Portion second(0.5, 1.0);
        FitProgress::report(0.0, "");
        FitProgress::report(1.0, "");
    }

    EXPECT_EQ(innerFractions, (std::vector<double>{0.5, 0.5}));
    EXPECT_EQ(outerFractions, (std::vector<double>{0.5, 1.0}));
}
