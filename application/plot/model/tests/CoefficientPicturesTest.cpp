#include <plot/model/CoefficientPictures.h>

#include "../../../session/tests/CvdSession.h"

#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {
const std::vector<std::string> inputs = {"Pressure", "H2/WF6"};
} // namespace

TEST(CoefficientPictures, AreSortedBySizeAndHaveLimits)
{
    CaseSession session = cvdSession();

    const CoefficientPicture picture =
        coefficientPicture(session.statistics()[1], inputs, "Stress");

    // Ordinary least squares for Stress in codes rounded to two decimals: 0.736 for the pressure,
    // -0.529 for its square, 0.497 for the ratio, -0.119 for its square, 0.069 for the product.
    const std::vector<std::vector<std::string>> factors = {{"Pressure"},
                                                           {"Pressure", "Pressure"},
                                                           {"H2/WF6"},
                                                           {"H2/WF6", "H2/WF6"},
                                                           {"Pressure", "H2/WF6"}};
    const std::vector<double> estimates = {0.736, -0.529, 0.497, -0.119, 0.069};
    ASSERT_EQ(picture.terms.size(), 5u);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(picture.terms[i].factors, factors[i]);
        EXPECT_NEAR(picture.terms[i].estimate, estimates[i], 3e-3);
        EXPECT_LT(picture.terms[i].lower, picture.terms[i].estimate);
        EXPECT_GT(picture.terms[i].upper, picture.terms[i].estimate);
        EXPECT_EQ(picture.terms[i].isSignificant,
                  picture.terms[i].lower > 0.0 || picture.terms[i].upper < 0.0);
    }
    EXPECT_EQ(picture.caption, "Inputs coded to -1 and 1 at the ends of their ranges; without the "
                               "constant. The bars are 95\302\240% confidence limits. Grey: not "
                               "significant, the limits hold 0.");
}

TEST(CoefficientPictures, HaveTheUnitOfWhatWasModelled)
{
    const ResponseSurfaceStatistics statistics = cvdSession().statistics()[1];
    const auto valueName = [&](OutputTransform transform, const std::string& unit) {
        return coefficientPicture(statistics, inputs, "Stress", transform, unit).valueName;
    };

    EXPECT_EQ(valueName(OutputTransform::None, ""), "coefficient, in the unit of Stress");
    EXPECT_EQ(valueName(OutputTransform::None, "GPa"), "coefficient (GPa)");
    EXPECT_EQ(valueName(OutputTransform::Logarithm, ""), "coefficient of the logarithm of Stress");
}

TEST(CoefficientPictures, WithoutResidualsHaveNoLimits)
{
    CaseSession session(cvdCases(), {{0, 1}, {2}}, {0, 1, 2, 3, 4, 5, 6, 7},
                        CaseSession::ResponseSurface);

    const CoefficientPicture picture =
        coefficientPicture(session.statistics()[0], inputs, "Uniformity");

    ASSERT_EQ(picture.terms.size(), 2u);
    EXPECT_TRUE(std::isnan(picture.terms[0].lower));
    EXPECT_TRUE(picture.terms[0].isSignificant) << "nothing says otherwise";
    EXPECT_EQ(picture.caption,
              "Inputs coded to -1 and 1 at the ends of their ranges; without the constant. As many "
              "terms as cases leave nothing for confidence limits.");
}

TEST(CoefficientPictures, OfAConstantModelDoNotExist)
{
    CaseSession session(cvdCases(), {{0, 1}, {2}}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9},
                        CaseSession::ResponseSurface);

    EXPECT_THROW(coefficientPicture(session.statistics()[0], inputs, "Uniformity"),
                 SurrogateModelInterface::Error);
}

TEST(CoefficientPictures, ThatNoAxisCanShowAreRefused)
{
    ResponseSurfaceStatistics statistics;
    statistics.codedCoefficients.resize(1);
    statistics.codedCoefficients[0].factors = {0};
    statistics.codedCoefficients[0].estimate = 1.7e308;

    EXPECT_THROW(coefficientPicture(statistics, inputs, "Stress"), SurrogateModelInterface::Error);
}
