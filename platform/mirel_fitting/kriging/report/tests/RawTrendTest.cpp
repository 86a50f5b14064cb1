#include <mirel_fitting/kriging/report/RawTrend.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

/** The trend 10 + 2 (a + b t), t from -1 to 1 over the cases of the input that varies, V2. */
struct Linear
{
    explicit Linear(double first)
        : inputs{{3.0, 3.0, 3.0}, {first, first + 1.0, first + 2.0}}, cases(pointersTo(inputs), 3),
          trend(3, 1, cases.coordinates(), 1, 0), raw(cases, {10.0, 2.0}, trend, coefficients)
    {}

    Columns inputs;
    KrigingCases cases;
    KrigingTrend trend;
    std::vector<double> coefficients = {0.5, 3.0};
    RawTrend raw;
};

} // namespace

TEST(RawTrend, HasTheUnitsOfInputsAndOutput)
{
    const Linear linear(0.0);

    const std::vector<RawTrend::Term> terms = linear.raw.terms(); // t = V2 - 1

    ASSERT_EQ(terms.size(), 2u);
    EXPECT_EQ(terms[0].name, "1");
    EXPECT_DOUBLE_EQ(terms[0].coefficient, 10.0 + 2.0 * (0.5 - 3.0));
    EXPECT_EQ(terms[1].name, "V2");
    EXPECT_TRUE(terms[0].factors.empty());
    EXPECT_EQ(terms[1].factors, std::vector<std::size_t>{1});
    EXPECT_DOUBLE_EQ(terms[1].coefficient, 6.0);
}

TEST(RawTrend, IsWrittenInTheInputsOrAboutTheCentreWhereThatSavesDigits)
{
    const std::string text = Linear(0.0).raw.text(12.0);

    EXPECT_NE(text.find("V2"), std::string::npos) << text;
    EXPECT_EQ(text.find("V2 -"), std::string::npos) << text;
    EXPECT_EQ(text.find("V1"), std::string::npos) << text;

    const std::string centred = Linear(1e9).raw.text(12.0);

    EXPECT_NE(centred.find("(V2 - 1000000001)"), std::string::npos) << centred;
}

TEST(RawTrend, ListsTheLowerTermsThatRawInputsBringInForDroppedOnes)
{
    // V2 is V1 here: V2, V1 V2 and V2^2 go; V1^2 in raw inputs needs V1.
    Columns inputs = {{0.0, 0.1, 0.3, 0.4, 0.7, 1.1, 1.6, 2.0},
                      {0.0, 0.1, 0.3, 0.4, 0.7, 1.1, 1.6, 2.0}};
    const KrigingCases cases(pointersTo(inputs), 8);
    const KrigingTrend trend(8, 2, cases.coordinates(), 2, 1);
    ASSERT_EQ(trend.size(), 3u);

    const std::vector<RawTrend::Term> terms = RawTrend(cases, {}, trend, {0.0, 0.0, 1.0}).terms();

    ASSERT_EQ(terms.size(), 3u); // (V1 - 1)^2
    EXPECT_EQ(terms[2].name, "V1^2");
    EXPECT_DOUBLE_EQ(terms[0].coefficient, 1.0);
    EXPECT_DOUBLE_EQ(terms[1].coefficient, -2.0);
    EXPECT_DOUBLE_EQ(terms[2].coefficient, 1.0);
}
