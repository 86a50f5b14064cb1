#include <session/text/NearestText.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {
struct Example
{
    std::string wanted;
    std::vector<std::string> known;
    std::string nearest; ///< "" for none
};

std::ostream& operator<<(std::ostream& stream, const Example& example)
{
    return stream << example.wanted;
}

class NearestText : public ::testing::TestWithParam<Example>
{};
} // namespace

TEST_P(NearestText, IsTheOneMostLikelyMeant)
{
    const Example& example = GetParam();

    const std::optional<std::size_t> found = nearestText(example.wanted, example.known);

    EXPECT_EQ(found ? example.known[*found] : "", example.nearest);
}

INSTANTIATE_TEST_SUITE_P(ByPrefix, NearestText,
                         ::testing::Values(Example{"Str", {"Mass", "Stress"}, "Stress"},
                                           Example{"Str", {"Stress_2", "Stress"}, "Stress"},
                                           Example{"St", {"ST", "Stress"}, "Stress"}));
INSTANTIATE_TEST_SUITE_P(ByCase, NearestText,
                         ::testing::Values(Example{"stress", {"Strass", "Stress"}, "Stress"},
                                           Example{"pres", {"Free", "Pressure"}, "Pressure"},
                                           Example{"X", {"y", "x"}, "x"}));
INSTANTIATE_TEST_SUITE_P(
    ByEdits, NearestText,
    ::testing::Values(Example{"evalute", {"export", "evaluate", "equations"}, "evaluate"},
                      Example{"presure", {"Stress", "Pressure"}, "Pressure"},
                      Example{"Stress 1", {"Mass", "Stress_1", "Stress_2"}, "Stress_1"},
                      Example{"sitting", {"kitten", "knitting"}, "knitting"},
                      Example{"v4x", {"v43", "v44"}, "v43"},
                      Example{"Yeild", {"Charge", "Yield"}, "Yield"},
                      Example{"Temeprature", {"Pressure", "Temperature"}, "Temperature"}));
INSTANTIATE_TEST_SUITE_P(IsNoneFor, NearestText,
                         ::testing::Values(Example{"b", {"a", "c"}, ""}, Example{"xy", {"xz"}, ""},
                                           Example{"", {"a"}, ""},
                                           Example{"Force", {"Stress", "Mass"}, ""},
                                           Example{"Stress", {}, ""}));
