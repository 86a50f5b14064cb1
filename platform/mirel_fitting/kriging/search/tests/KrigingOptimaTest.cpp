#include <mirel_fitting/kriging/search/KrigingOptima.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace {

/** Along the logarithm of the first length. */
class Profile : public BoundedObjective
{
public:
    explicit Profile(std::function<double(double)> function) : function(std::move(function)) {}

    double value(const std::vector<double>& point) override { return function(point[0]); }
    void gradient(std::vector<double>& /*result*/) override {}

private:
    std::function<double(double)> function;
};

class KrigingOptimaTest : public testing::Test
{
protected:
    static KrigingData twoCases()
    {
        KrigingData data;
        data.cases = 2;
        data.inputs = 1;
        data.coordinates = {0.0, 1.0};
        return data;
    }

    static KrigingOptima::Optimum at(double place, double value, double noise = 0.0)
    {
        return {{place, -4.0}, value, noise};
    }

    std::vector<double> values()
    {
        std::vector<double> result;
        for (const KrigingOptima::Optimum& optimum : optima) {
            result.push_back(optimum.value);
        }
        return result;
    }

    KrigingData data = twoCases();
    KrigingSearch::Settings settings;
    KrigingSearchVariables variables{data, settings};
    KrigingOptima optima{variables};
    Profile valley{[](double) { return -100.0; }};
    Profile ridge{[](double) { return 5.0; }};
};

} // namespace

TEST_F(KrigingOptimaTest, CountsSearchesThatMeetAndKeepsTheBetterOne)
{
    optima.add(at(0.0, 5.0), valley);
    optima.add(at(0.1, 5.5), valley); // a tenth: nearly the same length
    optima.add(at(0.1, 5.4), valley);

    ASSERT_EQ(optima.size(), 1u);
    EXPECT_EQ(optima.best().value, 5.5);
    EXPECT_EQ(optima.best().meetings, 3);
}

TEST_F(KrigingOptimaTest, KeepsWhatLiesBeyondADip)
{
    optima.add(at(-2.0, 5.0), valley);
    optima.add(at(2.0, 5.5), valley);
    EXPECT_EQ(optima.size(), 2u);

    optima.add(at(4.0, 5.2), ridge); // on one ridge with the first
    EXPECT_EQ(optima.size(), 2u);
}

TEST_F(KrigingOptimaTest, SortsTheBestFirstAndEqualsAsTheyCame)
{
    EXPECT_EQ(optima.highestValue(), -std::numeric_limits<double>::infinity());
    optima.add(at(-3.0, 1.0), valley);
    optima.add(at(0.0, 2.0, 0.25), valley);
    optima.add(at(3.0, 2.0, 0.5), valley);

    EXPECT_EQ(optima.highestValue(), 2.0);
    optima.sort();

    EXPECT_EQ(values(), (std::vector<double>{2.0, 2.0, 1.0}));
    EXPECT_EQ(optima.best().noiseVariance, 0.25);
}

TEST_F(KrigingOptimaTest, ShortlistsTheTwoBestAndTheBestOfTheOtherKind)
{
    optima.add(at(-4.0, 9.0), valley);
    optima.add(at(-2.0, 8.5), valley);
    optima.add(at(0.0, 8.0), valley);
    optima.add(at(2.0, 7.5, 0.1), valley); // the scatter is noise
    optima.add(at(4.0, 7.0, 0.1), valley);

    optima.shortlist(100); // those within 1 and 0.03 for each case

    EXPECT_EQ(values(), (std::vector<double>{9.0, 8.5, 7.5}));
}

TEST_F(KrigingOptimaTest, ShortlistsNoneThatIsFarBehind)
{
    optima.add(at(-2.0, 9.0), valley);
    optima.add(at(2.0, 4.9), valley); // 4.1 behind

    optima.shortlist(100);

    EXPECT_EQ(values(), std::vector<double>{9.0});
}

TEST_F(KrigingOptimaTest, DropsCopiesOfTheBest)
{
    optima.add(at(-2.0, 9.0), valley);
    optima.add(at(2.0, 8.0), valley);
    optima.add(at(4.0, 7.0), valley);
    optima.second().point = {-2.1, -4.0}; // where more cases have led it

    optima.dropCopiesOfTheBest();

    EXPECT_EQ(values(), (std::vector<double>{9.0, 7.0}));
}

TEST_F(KrigingOptimaTest, DropsEndsOfTheRidgeUntilTheNextOptimum)
{
    optima.add(at(-2.0, 5.1), valley);
    optima.add(at(2.0, 5.0), valley);
    optima.add(at(4.0, 1.0), valley);

    optima.dropEndsOfTheRidge(ridge);

    EXPECT_EQ(values(), (std::vector<double>{5.1, 1.0}));
}
