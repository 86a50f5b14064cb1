#include <surrogatemodel/InterpolationVariablesAbstract.h>

#include "FakeManager.h"
#include "UserDistXml.h"

#include <mirel_analyzercommon/tests/CleanUndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <property/UndoablePropertyProxy.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <type_traits>

namespace {

using Collection = SurrogateModelUserDistCollection;
using CollectionProperty = veska::Property<Collection>;
using CollectionProxy = veska::UndoablePropertyProxy<Collection>;
using DistributedPoints = InterpolationVariablesAbstract::DistributedPoints;
using Values = std::vector<double>;

Values distributed(std::pair<double, double> range, std::size_t count)
{
    Values values;
    DistributedPoints(range, count).get(values);
    return values;
}

TEST(InterpolationVariablesAbstractPoints, AreTheLowEndPlusIStepsTheLastOneToo)
{
    const double step = 0.3 / 3.0;
    EXPECT_EQ(distributed({0, 10}, 5), (Values{0, 2.5, 5, 7.5, 10}));
    EXPECT_EQ(distributed({10, 0}, 3), (Values{10, 5, 0})) << "they may descend";
    EXPECT_EQ(distributed({5, 5}, 3), (Values{5, 5, 5})) << "a range without width";
    EXPECT_EQ(distributed({0, 10}, 0), Values()) << "no point";
    EXPECT_EQ(distributed({0, 0.3}, 4), (Values{0.0, step, 2.0 * step, 3.0 * step}));
    EXPECT_EQ(distributed({0, 1}, 11)[6], 0.6000000000000001) << "adding 0.1 up gives 0.6";
}

TEST(InterpolationVariablesAbstractPoints, GiveNaNForOnePointAndWhatNonFiniteRangesCompute)
{
    for (const std::pair<double, double>& range : {std::pair<double, double>{0, 10}, {5, 5}}) {
        const Values values = distributed(range, 1);
        ASSERT_EQ(values.size(), 1u);
        EXPECT_TRUE(std::isnan(values[0]));
    }

    const double infinity = std::numeric_limits<double>::infinity();

    const Values wide = distributed({-1e308, 1e308}, 3);
    EXPECT_TRUE(std::isnan(wide[0])) << "0 times an infinite step";
    EXPECT_EQ(wide[2], infinity);
    const Values noNumber = distributed({std::nan(""), 1}, 2);
    EXPECT_TRUE(std::isnan(noNumber[0]));
    EXPECT_TRUE(std::isnan(noNumber[1]));
}

TEST(InterpolationVariablesAbstractPoints, CanMissTheHighEndByRounding)
{
    // 49 steps of 1/49 are not 1 in double: the last value is computed like the others.
    const Values values = distributed({0, 1}, 50);

    EXPECT_EQ(values.back(), 49.0 * (1.0 / 49.0));
    EXPECT_NE(values.back(), 1.0);
    // Two roundings, of the step and of the product, by half a unit in the last place each.
    EXPECT_NEAR(values.back(), 1.0, std::numeric_limits<double>::epsilon());
}

TEST(InterpolationVariablesAbstractPoints,
     ComeAfterWhatTheVectorHoldsAndReserveTheirCountWhereItHasLess)
{
    Values values = {9};

    DistributedPoints({0, 1}, 2).get(values);

    EXPECT_EQ(values, (Values{9, 0, 1}));

    for (const std::size_t reserved : {0u, 1000u}) {
        Values others;
        others.reserve(reserved);
        DistributedPoints({0, 1}, 100).get(others);
        EXPECT_EQ(others.capacity(), std::max<std::size_t>(reserved, 100u));
    }
}

TEST(InterpolationVariablesAbstractPoints, ReserveNothingForWhatTheVectorHoldsAlready)
{
    Values values;
    values.reserve(50);
    values.assign(50, 9.0);

    DistributedPoints({0, 1}, 100).get(values);

    // Room for 100 is used up by 50 points; the vector then grows in its own, larger step.
    ASSERT_EQ(values.size(), 150u);
    EXPECT_GT(values.capacity(), 150u);
}

/** Sweeps the variables that a test gives points for. */
class ChosenPoints : public InterpolationVariablesAbstract
{
public:
    using InterpolationVariablesAbstract::InterpolationVariablesAbstract;

    std::set<VarPtr> dependentVariables() const override { return {}; }

    void sweep(const VarPtr& variable, std::pair<double, double> range, std::size_t count)
    {
        points[variable] = boost::make_shared<DistributedPoints>(range, count);
    }

protected:
    boost::shared_ptr<InterpolationPointsInterface>
    interpolationPoints(VarPtr variable) const override
    {
        const auto found = points.find(variable);
        return found == points.end() ? nullptr : found->second;
    }

private:
    std::map<VarPtr, boost::shared_ptr<InterpolationPointsInterface>> points;
};

/** Two independent variables, x and y, of a project; the fake manager lists both. */
class InterpolationVariablesAbstractTest : public testing::Test
{
protected:
    InterpolationVariablesAbstractTest()
    {
        manager->independents->set({x, y});
        interpolation->connectSignalInterpolationVariablesChanged([this] { ++emissions; });
    }

    Values valuesOf(const VarPtr& variable) const
    {
        return interpolation->inputIndependentVariables()->at(variable);
    }

    Project project;
    const VarPtr x = project.addNumericVariable("x", Variable::Independent);
    const VarPtr y = project.addNumericVariable("y", Variable::Independent);
    boost::shared_ptr<FakeManager> manager = boost::make_shared<FakeManager>();
    CollectionProperty distributions;
    std::unique_ptr<ChosenPoints> interpolation =
        std::make_unique<ChosenPoints>(manager, distributions);
    int emissions = 0;
};

TEST_F(InterpolationVariablesAbstractTest, RefusesAMissingManager)
{
    EXPECT_THROW(ChosenPoints(nullptr, distributions), std::invalid_argument);
}

TEST_F(InterpolationVariablesAbstractTest, AnswersANewMapOfTheDistinctVariablesOfTheListOnEachCall)
{
    manager->independents->set({y, x, y});
    const auto first = interpolation->inputIndependentVariables();
    ASSERT_EQ(first->size(), 2u);
    EXPECT_EQ(first->begin()->first, x) << "in the order of the handles, not of the list";

    first->clear();
    EXPECT_EQ(interpolation->inputIndependentVariables()->size(), 2u);
    manager->independents->set({y});
    EXPECT_EQ(interpolation->inputIndependentVariables()->count(x), 0u);
    manager->independents->set({});
    EXPECT_TRUE(interpolation->inputIndependentVariables()->empty());
}

TEST_F(InterpolationVariablesAbstractTest,
       TakesTheUsersValuesThenTheSubclassesThenTheEvaluationPoint)
{
    const Collection none;
    const auto inMode = [](Collection::VariableMode mode, const char* text) {
        return with({}, "x", mode, text);
    };
    const auto typed = [&](const char* text) { return inMode(Collection::UserDefined, text); };
    struct
    {
        const char* what;
        Collection user;
        bool isSwept;
        Collection point;
        Values values;
    } const rows[] = {
        {"swept in mode Auto", inMode(Collection::Auto, "7"), true, none, {0, 0.5, 1}},
        {"swept, no user distribution", none, true, none, {0, 0.5, 1}},
        {"swept, user's values", typed("7, 3"), true, none, {3, 7}},
        {"swept, empty text of the user: not the subclass's points", typed(""), true, none, {}},
        {"swept, faulty text of the user", typed("abc"), true, none, {}},
        {"swept, user's text with an empty item", typed("1,"), true, none, {}},
        {"not swept: the user's values do not count", typed("7"), false, typed("5"), {5}},
        {"evaluation point of several values", none, false, typed("1, 2, 3"), {1, 2, 3}},
        {"evaluation point in mode Auto", none, false, inMode(Collection::Auto, "5"), {5}},
        {"no evaluation point", none, false, none, {}},
        {"faulty evaluation point", none, false, typed("abc"), {}},
    };
    for (const auto& row : rows) {
        distributions.set(row.user);
        manager->point->set(row.point);
        ChosenPoints chosen(manager, distributions);
        if (row.isSwept) {
            chosen.sweep(x, {0, 1}, 3);
        }
        EXPECT_EQ(chosen.inputIndependentVariables()->at(x), row.values) << row.what;
    }
}

TEST_F(InterpolationVariablesAbstractTest,
       AVariableListedTwiceGetsItsDistributedPointsTwiceOthersOnce)
{
    manager->independents->set({x, x, y, y});
    manager->point->set(with({}, "y", Collection::Auto, "5"));
    interpolation->sweep(x, {0, 1}, 2);
    EXPECT_EQ(valuesOf(x), (Values{0, 1, 0, 1}));
    EXPECT_EQ(valuesOf(y), (Values{5}));

    distributions.set(with({}, "x", Collection::UserDefined, "1, 2"));
    EXPECT_EQ(valuesOf(x), (Values{1, 2}));
}

TEST_F(InterpolationVariablesAbstractTest, AnswersForARemovedVariableUnderTheNameItHad)
{
    manager->point->set(with({}, "x", Collection::Auto, "5"));
    project.removeVariable(x);

    EXPECT_EQ(valuesOf(x), (Values{5}));
}

TEST_F(InterpolationVariablesAbstractTest, AHandleOfNoVariableIsAHandleError)
{
    manager->independents->set({VarPtr()});

    EXPECT_THROW(interpolation->inputIndependentVariables(), HandleError);
}

TEST_F(InterpolationVariablesAbstractTest, EmploysWhatTheSubclassSweepsListedOrNotWhateverTheMode)
{
    const VarPtr unlisted = project.addNumericVariable("z", Variable::Independent);
    distributions.set(with({}, "y", Collection::UserDefined, "1"));
    interpolation->sweep(x, {0, 1}, 2);
    interpolation->sweep(unlisted, {0, 1}, 2);

    EXPECT_TRUE(interpolation->isVariableEmployed(x));
    EXPECT_FALSE(interpolation->isVariableEmployed(y));
    EXPECT_TRUE(interpolation->isVariableEmployed(unlisted));
}

TEST_F(InterpolationVariablesAbstractTest, SignalsAChangeOfUserDistributionsOrEvaluationPointOnce)
{
    manager->independents->set({y});
    manager->modelType->set(SurrogateModelManagerInterface::ResponseSurface);
    EXPECT_EQ(emissions, 0);
    distributions.set(with({}, "x", Collection::UserDefined, "1"));
    EXPECT_EQ(emissions, 1);
    distributions.set(with({}, "x", Collection::UserDefined, "1"));
    EXPECT_EQ(emissions, 1) << "equal values are no change";
    manager->point->set(with({}, "x", Collection::Auto, "1"));
    EXPECT_EQ(emissions, 2);
}

TEST_F(InterpolationVariablesAbstractTest, SignalsOnceForASetOfAProxyAndTwiceForUndoAndRedo)
{
    const CleanUndoStack cleanUndoStack;
    const auto proxy = boost::make_shared<CollectionProxy>("Point", manager->point);
    manager->point = proxy;
    const ChosenPoints undoable(manager, distributions);
    undoable.connectSignalInterpolationVariablesChanged([this] { ++emissions; });
    interpolation.reset();

    proxy->set(with({}, "x", Collection::Auto, "1"));
    EXPECT_EQ(emissions, 1);
    UndoStack().stack().undo();
    EXPECT_EQ(emissions, 3);
    UndoStack().stack().redo();
    EXPECT_EQ(emissions, 5);
}

TEST_F(InterpolationVariablesAbstractTest, IsSilentWhileSuspendedAndSignalsNothingLater)
{
    interpolation->suspend();
    distributions.set(with({}, "x", Collection::UserDefined, "1"));
    manager->point->set(with({}, "x", Collection::Auto, "1"));
    interpolation->resume();
    EXPECT_EQ(emissions, 0);

    distributions.set(with({}, "x", Collection::UserDefined, "2"));
    manager->point->set(with({}, "x", Collection::Auto, "2"));
    EXPECT_EQ(emissions, 2);
}

TEST_F(InterpolationVariablesAbstractTest, OneResumeEndsAnyNumberOfSuspensions)
{
    interpolation->resume();
    interpolation->suspend();
    interpolation->suspend();
    interpolation->resume();
    distributions.set(with({}, "x", Collection::UserDefined, "1"));

    EXPECT_EQ(emissions, 1);
}

TEST_F(InterpolationVariablesAbstractTest, AnswersValuesAlsoWhileSuspended)
{
    interpolation->suspend();

    manager->point->set(with({}, "x", Collection::Auto, "5"));

    EXPECT_EQ(valuesOf(x), (Values{5}));
}

TEST_F(InterpolationVariablesAbstractTest, StopsListeningWhenDestroyed)
{
    interpolation.reset();
    distributions.set(with({}, "x", Collection::UserDefined, "1"));
    manager->point->set(with({}, "x", Collection::Auto, "1"));

    EXPECT_EQ(emissions, 0);
    EXPECT_EQ(distributions.signalChanged.num_slots(),
              CollectionProperty().signalChanged.num_slots());
}

TEST_F(InterpolationVariablesAbstractTest, KeepsTheManagerAliveUntilDestroyed)
{
    const boost::weak_ptr<FakeManager> observer = manager;

    manager.reset();
    EXPECT_FALSE(observer.expired());
    EXPECT_EQ(interpolation->inputIndependentVariables()->size(), 2u);
    interpolation.reset();

    EXPECT_TRUE(observer.expired());
}

TEST_F(InterpolationVariablesAbstractTest, MayBeDestroyedAfterTheUserDistributions)
{
    auto borrowed = std::make_unique<CollectionProperty>();
    interpolation = std::make_unique<ChosenPoints>(manager, *borrowed);

    borrowed.reset();
    EXPECT_NO_THROW(interpolation->suspend());
    EXPECT_NO_THROW(interpolation->resume());
    EXPECT_NO_THROW(interpolation.reset());
}

TEST_F(InterpolationVariablesAbstractTest, MayBeDestroyedByItsOwnListener)
{
    interpolation->connectSignalInterpolationVariablesChanged([&] { interpolation.reset(); });

    distributions.set(with({}, "x", Collection::UserDefined, "1"));

    EXPECT_FALSE(interpolation);
}

/** Reaches the virtual bases along a second path. */
class Suspendable : public virtual SuspendableInterface
{};
class AlsoSuspendable : public ChosenPoints, public Suspendable
{};

TEST(InterpolationVariablesAbstract, SharesItsVirtualBases)
{
    // Ambiguous, and hence no conversion, if there were two of them.
    EXPECT_TRUE((std::is_convertible<AlsoSuspendable*, SuspendableInterface*>::value));
}

} // namespace
