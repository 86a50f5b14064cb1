#include <mirel_fitting/kriging/search/KrigingOptima.h>

#include <gtest/gtest.h>

#include <functional>

namespace {

/** Along the logarithm of the first length. */
class Profile : public BoundedObjective
{
public:
    explicit Profile(std::function<double(double)> function) : function(std::move(function)) {}

    double value(const std::vector<double>& point) override { return function(point[0]); }
    void curvature(std::vector<double>& /*result*/) override {}
    void gradient(std::vector<double>& /*result*/) override {}

private:
    std::function<double(double)> function;
};

class KrigingOptima : public testing::Test
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

    static ::KrigingOptima::Optimum at(double place, double value)
    {
        return {{place, -4.0}, value};
    }

    std::vector<double> values()
    {
        std::vector<double> result;
        for (const ::KrigingOptima::Optimum& optimum : optima.all()) {
            result.push_back(optimum.value);
        }
        return result;
    }

    KrigingData data = twoCases();
    KrigingSearchSettings settings;
    KrigingSearchVariables variables{data, settings};
    ::KrigingOptima optima{variables};
    Profile valley{[](double) { return -100.0; }};
    Profile ridge{[](double) { return 5.0; }};
};

TEST_F(KrigingOptima, KeepsTheBetterOfSearchesThatConvergeToTheSameOptimum)
{
    optima.add(at(0.0, 5.0), valley);
    optima.add(at(0.1, 5.5), valley); // a tenth: nearly the same length
    optima.add(at(0.1, 5.4), valley);

    EXPECT_EQ(values(), std::vector<double>{5.5});
}

TEST_F(KrigingOptima, KeepsWhatLiesBeyondADip)
{
    optima.add(at(-2.0, 5.0), valley);
    optima.add(at(2.0, 5.5), valley);
    EXPECT_EQ(optima.size(), 2u);

    optima.add(at(4.0, 5.2), ridge); // on one ridge with the best
    EXPECT_EQ(values(), (std::vector<double>{5.5, 5.0}));
}

TEST_F(KrigingOptima, KeepsTheBestFirstAndEqualsAsTheyCame)
{
    optima.add(at(-3.0, 1.0), valley);
    optima.add(at(0.0, 2.0), valley);
    optima.add(at(3.0, 2.0), valley);

    EXPECT_EQ(values(), (std::vector<double>{2.0, 2.0, 1.0}));
    EXPECT_EQ(optima.best().point[0], 0.0);
}

TEST_F(KrigingOptima, KnowsABetterOneThatIsNearInEveryVariable)
{
    optima.add({{0.0, -4.0}, 5.0}, valley);

    EXPECT_TRUE(optima.isBetterNear({0.4, -4.4}, 4.0));
    EXPECT_FALSE(optima.isBetterNear({0.4, -4.4}, 5.1)) << "it is not better";
    EXPECT_FALSE(optima.isBetterNear({0.6, -4.0}, 4.0));
    EXPECT_FALSE(optima.isBetterNear({0.0, -4.6}, 4.0));
}

TEST_F(KrigingOptima, ShortensTheListToTheBest)
{
    optima.add(at(-4.0, 9.0), valley);
    optima.add(at(0.0, 8.0), valley);
    optima.add(at(-2.0, 8.5), valley);

    optima.shorten(2);

    EXPECT_EQ(values(), (std::vector<double>{9.0, 8.5}));
}

TEST_F(KrigingOptima, ForgetsOptimaThatMoreCasesHaveMadeTheSame)
{
    optima.add(at(-2.0, 9.0), valley);
    optima.add(at(2.0, 8.0), valley);

    optima.replace({at(-2.0, 7.0), at(-2.1, 7.5)}, valley);

    EXPECT_EQ(values(), std::vector<double>{7.5});
}

} // namespace
