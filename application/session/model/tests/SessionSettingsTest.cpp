#include <session/model/SessionSettings.h>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

TEST(SessionSettings, DifferInAnyOfTheirMembers)
{
    const std::vector<std::function<void(SessionSettings&)>> changes = {
        [](SessionSettings& settings) {
            settings.variables[VarPtr()].nature = Variable::Dependent;
        },
        [](SessionSettings& settings) { settings.excluded = {1}; },
        [](SessionSettings& settings) { settings.type = SurrogateModelManagerInterface::Kriging; },
        [](SessionSettings& settings) { settings.inputs = {VarPtr()}; },
        [](SessionSettings& settings) { settings.outputs = {VarPtr()}; },
        [](SessionSettings& settings) { settings.evaluationPoint.setUserDistString("x", "1"); },
        [](SessionSettings& settings) { settings.userDistributions.setUserDistString("x", "1"); },
        [](SessionSettings& settings) { settings.sweeps[VarPtr()]; },
        [](SessionSettings& settings) { settings.responseSurface.terms = PolynomialTerms::Linear; },
        [](SessionSettings& settings) { settings.transform = TransformSetting::None; },
        [](SessionSettings& settings) { settings.coding = InputCoding::Factorial; },
    };
    EXPECT_TRUE(SessionSettings() == SessionSettings());
    for (std::size_t i = 0; i < changes.size(); ++i) {
        SessionSettings changed;
        changes[i](changed);
        EXPECT_FALSE(changed == SessionSettings()) << i;
        EXPECT_TRUE(changed == changed) << i;
    }
}

TEST(SessionSettings, OfAVariableDifferInNatureAndRange)
{
    SessionSettings::VariableSettings one;
    SessionSettings::VariableSettings other;
    EXPECT_TRUE(one == other);

    other.range = {0.0, 1.0};
    EXPECT_FALSE(one == other);
}
