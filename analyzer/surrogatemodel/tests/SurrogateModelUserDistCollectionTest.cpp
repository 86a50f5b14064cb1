#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include "UserDistXml.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>
#include <vector>

namespace {

using Collection = SurrogateModelUserDistCollection;

TEST(SurrogateModelUserDistCollection, ModesAreAutoZeroAndUserDefinedOneIn32Bits)
{
    EXPECT_EQ(static_cast<int>(Collection::Auto), 0);
    EXPECT_EQ(static_cast<int>(Collection::UserDefined), 1);
    EXPECT_TRUE(
        (std::is_same<std::underlying_type_t<Collection::VariableMode>, std::int32_t>::value));
}

TEST(SurrogateModelUserDistCollection, AnswersAutoAndEmptyTextForAnUnknownNameWithoutAddingIt)
{
    const Collection collection;

    EXPECT_EQ(collection.getMode("x"), Collection::Auto);
    EXPECT_EQ(collection.getUserDistString("x"), "");
    const auto points = collection.getUserDistributionPoints("x");
    ASSERT_TRUE(points);
    EXPECT_FALSE(points->isValid());
    EXPECT_EQ(points->validate(), SurrogateModelUserDist::NoValueRange);

    EXPECT_TRUE(collection.getVarNameSet().empty());
    EXPECT_TRUE(collection == Collection());
}

TEST(SurrogateModelUserDistCollection, SetsTextAndModeIndependently)
{
    Collection collection;

    collection.setUserDistString("x", "0 - 1 : 3");
    EXPECT_TRUE(collection == with({}, "x", Collection::Auto, "0 - 1 : 3"));
    collection.setMode("x", Collection::UserDefined);
    EXPECT_TRUE(collection == with({}, "x", Collection::UserDefined, "0 - 1 : 3"));
    collection.setUserDistString("x", "2");
    EXPECT_TRUE(collection == with({}, "x", Collection::UserDefined, "2"));
    collection.setMode("y", Collection::UserDefined);
    EXPECT_EQ(collection.getUserDistString("y"), "");
    EXPECT_EQ(collection.getVarNameSet(), (std::set<std::string>{"x", "y"}));
}

TEST(SurrogateModelUserDistCollection, ListsNamesInByteOrder)
{
    Collection collection;
    for (const char* name : {"\xc3\xa9", "a", "B", "", "a b"}) {
        collection.setUserDistString(name, "1");
    }

    const std::set<std::string> names = collection.getVarNameSet();

    EXPECT_EQ(std::vector<std::string>(names.begin(), names.end()),
              (std::vector<std::string>{"", "B", "a", "a b", "\xc3\xa9"}));
}

TEST(SurrogateModelUserDistCollection, PointsGiveTheValuesOfTheTextWhateverTheMode)
{
    for (const auto mode : {Collection::Auto, Collection::UserDefined}) {
        const Collection collection = with({}, "x", mode, "0 - 1 : 3");

        std::vector<double> values;
        collection.getUserDistributionPoints("x")->get(values);

        EXPECT_EQ(values, (std::vector<double>{0.0, 0.5, 1.0}));
    }
}

TEST(SurrogateModelUserDistCollection, PointsAreANewUncheckedObjectOnEachCall)
{
    const Collection collection = with({}, "x", Collection::UserDefined, "abc");

    const auto first = collection.getUserDistributionPoints("x");
    const auto second = collection.getUserDistributionPoints("x");

    EXPECT_NE(first, second);
    EXPECT_EQ(first->errorString(), "") << "made, but not parsed";
    EXPECT_EQ(first->validate(), SurrogateModelUserDist::InvalidFloatingPointNumber);
}

TEST(SurrogateModelUserDistCollection, EqualityComparesNamesModesAndTexts)
{
    const Collection reference = with({}, "x", Collection::UserDefined, "1");
    const std::pair<Collection, bool> others[] = {
        {with({}, "x", Collection::UserDefined, "1"), true},
        {with({}, "X", Collection::UserDefined, "1"), false},
        {with({}, "x", Collection::Auto, "1"), false},
        {with({}, "x", Collection::UserDefined, "1 "), false},
        {Collection(), false},
    };
    EXPECT_TRUE(with({}, "x", Collection::Auto, "") != Collection()) << "an entry of defaults";

    for (const auto& [other, same] : others) {
        EXPECT_EQ(reference == other, same);
        EXPECT_EQ(other == reference, same);
        EXPECT_EQ(reference != other, !same);
    }
}

TEST(SurrogateModelUserDistCollection, CopiesShareNothing)
{
    Collection original = with({}, "x", Collection::UserDefined, "1");
    Collection copy(original);
    Collection assigned;
    assigned = original;

    copy.setUserDistString("x", "2");
    original.setMode("x", Collection::Auto);

    EXPECT_TRUE(original == with({}, "x", Collection::Auto, "1"));
    EXPECT_TRUE(copy == with({}, "x", Collection::UserDefined, "2"));
    EXPECT_TRUE(assigned == with({}, "x", Collection::UserDefined, "1"));
}

TEST(SurrogateModelUserDistCollection, AssignmentReplacesWhatWasHeldAndSurvivesItself)
{
    Collection collection = with({}, "x", Collection::UserDefined, "1");
    const Collection& itself = collection;

    collection = itself;
    EXPECT_TRUE(collection == with({}, "x", Collection::UserDefined, "1"));
    collection = with({}, "y", Collection::Auto, "2");
    EXPECT_EQ(collection.getVarNameSet(), (std::set<std::string>{"y"}));
}

TEST(SurrogateModelUserDistCollection, StaysUsableAfterStdMove)
{
    Collection source = with({}, "x", Collection::UserDefined, "1");

    // NOLINTBEGIN(performance-move-const-arg, bugprone-use-after-move): that it copies is the
    // promise
    const Collection target(std::move(source));

    EXPECT_TRUE(target == with({}, "x", Collection::UserDefined, "1"));
    source.setUserDistString("x", "2");
    EXPECT_EQ(source.getUserDistString("x"), "2");
    // NOLINTEND(performance-move-const-arg, bugprone-use-after-move)
}

TEST(SurrogateModelUserDistCollection, KeepsFaultyTextsAndOddNamesAsTheyAre)
{
    const std::string withNul("a\0b", 3);
    const std::string notUtf8("\xff\xfe", 2);
    const Collection collection = with({}, withNul, Collection::UserDefined, notUtf8);

    EXPECT_EQ(collection.getUserDistString(withNul), notUtf8);
    EXPECT_EQ(collection.getUserDistString("a"), "");
    EXPECT_EQ(collection.getVarNameSet(), (std::set<std::string>{withNul}));
    EXPECT_FALSE(collection.getUserDistributionPoints(withNul)->isValid());
}

TEST(SurrogateModelUserDistCollection, IsDeletedThroughAVirtualDestructor)
{
    EXPECT_TRUE(std::has_virtual_destructor<Collection>::value);
}

} // namespace
