#include <session/text/NearestText.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

TEST(NearestText, IsTheOneMostLikelyMeant)
{
    struct Example
    {
        std::string wanted;
        std::vector<std::string> known;
        std::string nearest; ///< "" for none
    };
    const Example examples[] = {
        // By prefix
        {"Str", {"Mass", "Stress"}, "Stress"},
        {"Str", {"Stress_2", "Stress"}, "Stress"},
        {"St", {"ST", "Stress"}, "Stress"},
        // By case
        {"stress", {"Strass", "Stress"}, "Stress"},
        {"pres", {"Free", "Pressure"}, "Pressure"},
        {"X", {"y", "x"}, "x"},
        // By edits
        {"evalute", {"export", "evaluate", "equations"}, "evaluate"},
        {"presure", {"Stress", "Pressure"}, "Pressure"},
        {"Stress 1", {"Mass", "Stress_1", "Stress_2"}, "Stress_1"},
        {"sitting", {"kitten", "knitting"}, "knitting"},
        {"v4x", {"v43", "v44"}, "v43"},
        {"Yeild", {"Charge", "Yield"}, "Yield"},
        {"Temeprature", {"Pressure", "Temperature"}, "Temperature"},
        // None
        {"b", {"a", "c"}, ""},
        {"xy", {"xz"}, ""},
        {"", {"a"}, ""},
        {"Force", {"Stress", "Mass"}, ""},
        {"Stress", {}, ""},
    };
    for (const auto& [wanted, known, nearest] : examples) {
        const std::optional<std::size_t> found = nearestText(wanted, known);
        EXPECT_EQ(found ? known[*found] : "", nearest) << wanted;
    }
}
