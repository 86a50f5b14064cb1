#include <mirel_modelexport/FitReportParts.h>

#include <gtest/gtest.h>

TEST(FitReportParts, TermsHaveTheNamesOfTheInputs)
{
    using FitReportParts::termName;
    const std::vector<std::string> inputs = {"Pressure", "H2/WF6"};

    EXPECT_EQ(termName({}, inputs), "intercept");
    EXPECT_EQ(termName({1}, inputs), "H2/WF6");
    EXPECT_EQ(termName({0, 0}, inputs), "Pressure^2");
    EXPECT_EQ(termName({0, 1}, inputs), "Pressure * H2/WF6");
}
