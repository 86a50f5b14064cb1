#include <plot/model/EffectsPictures.h>

#include "../../../session/tests/CvdSession.h"

#include <plot/model/MainEffects.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {
/** y = x0 + 2 x1 + ... over so many inputs, each of which varies alone. */
CaseSession planeOf(std::size_t inputs)
{
    CaseTable table;
    CaseRoles roles;
    table.cases = 2 * inputs + 1;
    for (std::size_t i = 0; i <= inputs; ++i) {
        table.columns.emplace_back().name = i < inputs ? "x" + std::to_string(i) : "y";
        table.columns.back().numbers.assign(table.cases, 0.0);
    }
    for (std::size_t i = 0; i < inputs; ++i) {
        for (const int sign : {-1, 1}) {
            const std::size_t row = 2 * i + (sign > 0 ? 1 : 0);
            table.columns[i].numbers[row] = sign;
            table.columns[inputs].numbers[row] = sign * (1.0 + static_cast<double>(i));
        }
        roles.inputs.push_back(i);
    }
    roles.outputs = {inputs};
    return CaseSession(std::move(table), roles, {}, CaseSession::ResponseSurface);
}
} // namespace

TEST(EffectsPictures, ShowEveryInputOnOneAxis)
{
    CaseSession session = cvdSession();
    session.holdAtMedians({0, 1});

    const EffectsPicture picture = effectsPicture(session, MainEffects(session), 1);

    EXPECT_EQ(picture.title, "Stress, main effects, response surface");
    ASSERT_EQ(picture.effects.size(), 2u);
    EXPECT_EQ(picture.effects[0].inputName, "Pressure") << "the stronger one first";
    EXPECT_EQ(picture.effects[1].inputName, "H2/WF6");
    EXPECT_EQ(picture.effects[0].axisOutputs, picture.effects[1].axisOutputs);
    for (const SweepPicture& effect : picture.effects) {
        const auto& [least, most] = std::minmax_element(effect.upper.begin(), effect.upper.end());
        EXPECT_LE(picture.effects[0].axisOutputs[0], *least);
        EXPECT_GE(picture.effects[0].axisOutputs[1], *most);
        EXPECT_EQ(effect.title + effect.caption + effect.modelLabel + effect.caseLabel, "");
    }
}

TEST(EffectsPictures, TheCaptionSaysWhatIsDrawnAndHeld)
{
    CaseSession session = cvdSession();
    session.stayAt(0, "50");
    session.stayAt(1, "6.25");

    const EffectsPicture picture = effectsPicture(session, MainEffects(session), 0);

    EXPECT_EQ(picture.caption,
              "Line: response surface; band: \302\261 2.57 standard errors (95\302\240%). Dots: "
              "cases whose other inputs lie within 10\302\240% of their range of where they are "
              "held. Held while others are swept: Pressure = 50, H2/WF6 = 6.25.");
}

TEST(EffectsPictures, OfManyInputsTheStrongestAreShownAndCounted)
{
    CaseSession session = planeOf(104);

    const EffectsPicture picture = effectsPicture(session, MainEffects(session), 0);

    ASSERT_EQ(picture.effects.size(), maxEffects);
    EXPECT_EQ(picture.effects.front().inputName, "x103");
    EXPECT_EQ(
        picture.caption.rfind("The 100 of 104 inputs along which y changes most; name another to "
                              "see its effect. Line: ",
                              0),
        0u)
        << picture.caption;
}

TEST(EffectsPictures, LeaveOutInputsThatAreHeld)
{
    CaseSession session = planeOf(3);

    const EffectsPicture picture = effectsPicture(session, MainEffects(session, {2}), 0);

    ASSERT_EQ(picture.effects.size(), 2u);
    EXPECT_EQ(picture.effects[0].inputName, "x1");
    EXPECT_EQ(picture.effects[1].inputName, "x0");
}
