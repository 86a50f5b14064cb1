#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

/** Notes what is reported while it lives; cancels where it is told to. */
struct Recorder
{
    explicit Recorder(bool goesOn = true)
        : progress([this, goesOn](double fraction, const std::string& message) {
              fractions.push_back(fraction);
              messages.push_back(message);
              return goesOn;
          })
    {}

    std::vector<double> fractions;
    std::vector<std::string> messages;
    FitProgress progress;
};

using Fractions = std::vector<double>;
using Messages = std::vector<std::string>;

} // namespace

TEST(FitProgress, ReceivesTheFractionAndTheMessageOfItsOwnThread)
{
    EXPECT_NO_THROW(FitProgress::report(0.5, "nobody listens"));
    const Recorder recorder;

    FitProgress::report(0.25, "searching");
    std::thread([] { FitProgress::report(0.5, "elsewhere"); }).join();
    FitProgress::advance(1.0); // work that belongs to no fit

    EXPECT_EQ(recorder.fractions, Fractions{0.25});
    EXPECT_EQ(recorder.messages, Messages{"searching"});
}

TEST(FitProgress, CancelsTheFitWithAnErrorWhenItAnswersFalse)
{
    const Recorder recorder(false);
    EXPECT_THROW(FitProgress::report(0.0, ""), SurrogateModelInterface::Error);

    const FitProgress::Portion portion(0.0, 1.0, "searching");
    EXPECT_THROW(FitProgress::advance(1.0), SurrogateModelInterface::Error);
}

TEST(FitProgress, IsReplacedByANewerOneUntilThatEnds)
{
    const Recorder first;
    {
        const Recorder second;
        FitProgress::report(0.5, "");
        EXPECT_EQ(second.fractions, Fractions{0.5});
    }
    FitProgress::report(0.25, "");

    EXPECT_EQ(first.fractions, Fractions{0.25});
}

TEST(FitProgress, CountsTheWorkOfAPortionWithoutReachingItsEnd)
{
    const Recorder recorder;
    const FitProgress::Portion second(0.5, 1.0, "searching", 100.0);
    FitProgress::advance();
    FitProgress::advance(50.0);
    FitProgress::advance(1e30);

    const Fractions& fractions = recorder.fractions;
    ASSERT_EQ(fractions.size(), 3u);
    EXPECT_EQ(fractions[0], 0.5);
    EXPECT_GT(fractions[1], 0.75);
    EXPECT_LT(fractions[1], 0.9);
    EXPECT_GT(fractions[2], 0.95);
    EXPECT_LT(fractions[2], 1.0);
    EXPECT_EQ(recorder.messages, Messages(3, "searching"));
}

TEST(FitProgress, ReportsWorkInPartsOfANamedPortionAtTheirBeginning)
{
    const Recorder recorder;
    const FitProgress::Portion named(0.0, 0.5, "searching");
    const FitProgress::Portion part(0.5, 1.0);

    FitProgress::advance(10.0);

    EXPECT_EQ(recorder.fractions, Fractions{0.25});
    EXPECT_EQ(recorder.messages, Messages{"searching"});

    const Recorder second;
    const FitProgress::Portion portion(0.5, 1.0, "passing over the cases");
    FitProgress::advance();
    FitProgress::report(0.5, "");
    FitProgress::advance();

    EXPECT_EQ(second.fractions, (Fractions{0.5, 0.75, 0.75}));
}

TEST(FitProgress, DoesNotGoBackBetweenThePartsOfAPortion)
{
    const Recorder recorder;
    const FitProgress::Portion whole(0.0, 1.0, "fitting");
    {
        const FitProgress::Portion part(0.0, 0.5);
        FitProgress::report(0.8, "searching");
    }

    FitProgress::advance();

    EXPECT_DOUBLE_EQ(recorder.fractions.back(), 0.4);
}

TEST(FitProgress, ReportsThePortionsOfAFitAsPartsOfTheWhole)
{
    const Recorder recorder;
    {
        const FitProgress::Portion second(0.5, 1.0);
        FitProgress::report(0.0, "");
        const FitProgress::Portion itsFirst(0.0, 0.5);
        FitProgress::report(1.0, "");
    }
    FitProgress::report(0.875, "");

    EXPECT_EQ(recorder.fractions, (Fractions{0.5, 0.75, 0.875}));
}

TEST(FitProgress, ReceivesFractionsOfTheWholeFromAFitWithinAReport)
{
    Fractions outerFractions;
    Fractions innerFractions;
    const FitProgress outer([&](double fraction, const std::string&) {
        const Recorder inner;
        FitProgress::report(0.5, "");
        innerFractions.push_back(inner.fractions.at(0));
        outerFractions.push_back(fraction);
        return true;
    });
    {
        const FitProgress::Portion second(0.5, 1.0);
        FitProgress::report(0.0, "");
        FitProgress::report(1.0, "");
    }

    EXPECT_EQ(innerFractions, (Fractions{0.5, 0.5}));
    EXPECT_EQ(outerFractions, (Fractions{0.5, 1.0}));
}
