#include <surrogatemodel/NamedValueTranslator.h>

#include <mirel_property/tests/VirtualSlot.h>

#include <gtest/gtest.h>

#include <functional>
#include <type_traits>

namespace {

enum Colour
{
    Red,
    Green,
    Blue
};

using Colours = NamedValueTranslator<Colour>;

Colours twoColours()
{
    Colours colours;
    colours.add(Red, "red");
    colours.add(Green, "green");
    return colours;
}

/** The text of the std::out_of_range that `lookUp` ends with; empty if it does not. */
std::string failureOf(const std::function<void()>& lookUp)
{
    try {
        lookUp();
    } catch (const std::out_of_range& error) {
        return error.what();
    }
    return {};
}

constexpr char invalidKey[] = "bimap<>: invalid key";

} // namespace

TEST(NamedValueTranslator, TranslatesBothWaysAndFailsForTheUnknown)
{
    const Colours colours = twoColours();

    EXPECT_EQ(colours.toText(Red), "red");
    EXPECT_EQ(colours.toText(Green), "green");
    EXPECT_EQ(colours.toValue("red"), Red);
    EXPECT_EQ(colours.toValue("green"), Green);

    EXPECT_EQ(failureOf([&] { colours.toText(Blue); }), invalidKey);
    EXPECT_EQ(failureOf([] { Colours().toText(Red); }), invalidKey);

    for (const char* text : {"", "blue", "Red", " red", "red "}) {
        EXPECT_EQ(failureOf([&] { colours.toValue(text); }), invalidKey) << text;
    }
}

TEST(NamedValueTranslator, AcceptsTheSamePairAgain)
{
    Colours colours = twoColours();

    colours.add(Red, "red");

    EXPECT_EQ(colours.toText(Red), "red");
    EXPECT_EQ(colours.toValue("red"), Red);
}

TEST(NamedValueTranslator, RefusesAPairThatSharesItsValueOrItsTextWithAnother)
{
    Colours colours = twoColours();

    EXPECT_THROW(colours.add(Red, "crimson"), std::invalid_argument);
    EXPECT_THROW(colours.add(Blue, "red"), std::invalid_argument);
    EXPECT_THROW(colours.add(Red, "green"), std::invalid_argument);

    EXPECT_EQ(colours.toText(Red), "red");
    EXPECT_THROW(colours.toValue("crimson"), std::out_of_range);
    EXPECT_THROW(colours.toText(Blue), std::out_of_range);
}

TEST(NamedValueTranslator, KeepsTheOrderOfItsOperations)
{
    // The destructor, which comes first, has two slots.
    EXPECT_TRUE(std::has_virtual_destructor<Colours>::value);
    EXPECT_TRUE(isVirtualSlot(&Colours::add, 2));
    EXPECT_TRUE(isVirtualSlot(&Colours::toText, 3));
    EXPECT_TRUE(isVirtualSlot(&Colours::toValue, 4));
}
