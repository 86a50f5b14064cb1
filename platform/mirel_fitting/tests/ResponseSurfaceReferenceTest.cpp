#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace fittingtest;

// Published fits. The columns and certified figures of Norris, Pontius and Longley are those of the
// Statistical Reference Datasets of the National Institute of Standards and Technology (public
// domain, https://www.itl.nist.gov/div898/strd/lls/lls.shtml), computed there with 500 digits.

namespace {

struct Certified
{
    double estimate;
    double standardError;
};

/** Digits that two numbers share: the log relative error. */
double sharedDigits(double value, double reference)
{
    return value == reference ? 16.0 : -std::log10(std::fabs(value / reference - 1.0));
}

void expectCoefficients(const Model& model, const std::vector<Certified>& certified)
{
    const std::vector<CoefficientStatistics> table =
        model.responseSurfaceStatistics(0).coefficients;
    ASSERT_EQ(table.size(), certified.size());
    for (std::size_t term = 0; term < table.size(); ++term) {
        EXPECT_GE(sharedDigits(table[term].estimate, certified[term].estimate), 10.0)
            << table[term].term << ": " << table[term].estimate;
        EXPECT_GE(sharedDigits(table[term].standardError, certified[term].standardError), 9.0)
            << table[term].term << ": " << table[term].standardError;
    }
}

/** Rounds like the published tables do. */
double rounded(double value, int decimals)
{
    const double power = std::pow(10.0, decimals);
    return std::round(value * power) / power;
}

Cases norris()
{
    return {{{0.2, 337.4, 118.2, 884.6, 10.1,  226.5, 666.3, 996.3, 448.6, 777,   558.2, 0.4,
              0.6, 775.5, 666.9, 338,   447.5, 11.6,  556,   228.1, 995.8, 887.6, 120.2, 0.3,
              0.3, 556.8, 339.1, 887.2, 999,   779,   11.1,  118.3, 229.2, 669.1, 448.9, 0.5}},
            {{0.1, 338.8, 118.1, 888,   9.2,   228.1, 668.5, 998.5, 449.1, 778.9, 559.2, 0.3,
              0.1, 778.1, 668.8, 339.3, 448.9, 10.8,  557.7, 228.3, 998,   888.8, 119.6, 0.3,
              0.6, 557.6, 339.3, 888,   998.5, 778.9, 10.2,  117.6, 228.9, 668.4, 449.2, 0.2}}};
}

Cases pontius()
{
    return {{{150000,  300000,  450000,  600000,  750000,  900000,  1050000, 1200000,
              1350000, 1500000, 1650000, 1800000, 1950000, 2100000, 2250000, 2400000,
              2550000, 2700000, 2850000, 3000000, 150000,  300000,  450000,  600000,
              750000,  900000,  1050000, 1200000, 1350000, 1500000, 1650000, 1800000,
              1950000, 2100000, 2250000, 2400000, 2550000, 2700000, 2850000, 3000000}},
            {{0.11019, 0.21956, 0.32949, 0.43899, 0.54803, 0.65694, 0.76562, 0.87487,
              0.98292, 1.09146, 1.20001, 1.30822, 1.41599, 1.52399, 1.63194, 1.73947,
              1.84646, 1.95392, 2.06128, 2.16844, 0.11052, 0.22018, 0.32939, 0.43886,
              0.54798, 0.65739, 0.76596, 0.87474, 0.983,   1.0915,  1.20004, 1.30818,
              1.41613, 1.52408, 1.63159, 1.73965, 1.84696, 1.95445, 2.06177, 2.16829}}};
}

Cases longley()
{
    return {{{83, 88.5, 88.2, 89.5, 96.2, 98.1, 99, 100, 101.2, 104.6, 108.4, 110.8, 112.6, 114.2,
              115.7, 116.9},
             {234289, 259426, 258054, 284599, 328975, 346999, 365385, 363112, 397469, 419180,
              442769, 444546, 482704, 502601, 518173, 554894},
             {2356, 2325, 3682, 3351, 2099, 1932, 1870, 3578, 2904, 2822, 2936, 4681, 3813, 3931,
              4806, 4007},
             {1590, 1456, 1616, 1650, 3099, 3594, 3547, 3350, 3048, 2857, 2798, 2637, 2552, 2514,
              2572, 2827},
             {107608, 108632, 109773, 110929, 112075, 113270, 115094, 116219, 117388, 118734,
              120445, 121950, 123366, 125368, 127852, 130081},
             {1947, 1948, 1949, 1950, 1951, 1952, 1953, 1954, 1955, 1956, 1957, 1958, 1959, 1960,
              1961, 1962}},
            {{60323, 61122, 60171, 61187, 63221, 63639, 64989, 63761, 66019, 67857, 68169, 66513,
              68655, 69564, 69331, 70551}}};
}

/**
 * Eleven runs of a chemical vapour deposition process on coded inputs: pressure and gas ratio;
 * uniformity and stress. NIST/SEMATECH e-Handbook of Statistical Methods, 5.4.7.3 (Czitrom and
 * Spagon: Statistical Case Studies for Industrial Process Improvement, SIAM 1997).
 */
Cases codedVapourDeposition()
{
    return {{{1, 0, 0.71, -0.71, -1, 0, -0.71, 0, 0.71, 0, 0},
             {0, 0, -0.71, 0.71, 0, 0, -0.71, -1, 0.71, 1, 0}},
            {{4.6, 6.2, 3.4, 6.9, 7.3, 6.4, 8.6, 6.3, 5.1, 5.4, 5.0},
             {8.04, 7.78, 7.58, 7.27, 6.49, 7.69, 6.66, 7.16, 8.33, 8.19, 7.9}}};
}

void expectPublished(const Model& model, int offset, const std::vector<Certified>& published)
{
    const std::vector<CoefficientStatistics> table =
        model.responseSurfaceStatistics(offset).coefficients;
    ASSERT_EQ(table.size(), published.size());
    for (std::size_t term = 0; term < table.size(); ++term) {
        EXPECT_DOUBLE_EQ(rounded(table[term].estimate, 5), published[term].estimate)
            << table[term].term;
        EXPECT_DOUBLE_EQ(rounded(table[term].standardError, 5), published[term].standardError)
            << table[term].term;
    }
}

} // namespace

TEST(ResponseSurfaceReference, NorrisOfOrderLinear)
{
    const Model model = fit(norris(), 1);

    expectCoefficients(
        model, {{-0.262323073774029, 0.232818234301152}, {1.00211681802045, 0.429796848199937e-3}});
    EXPECT_NEAR(model.fitMetrics(0).r2, 0.999993745883712, 1e-14);
    EXPECT_GE(sharedDigits(model.fitMetrics(0).rmse, 0.884796396144373), 9.0);
}

TEST(ResponseSurfaceReference, PontiusOfOrderQuadratic)
{
    const Model model = fit(pontius());

    expectCoefficients(model, {{0.673565789473684e-3, 0.107938612033077e-3},
                               {0.732059160401003e-6, 0.157817399981659e-9},
                               {-0.316081871345029e-14, 0.486652849992036e-16}});
    EXPECT_NEAR(model.fitMetrics(0).r2, 0.999999900178537, 1e-14);
    EXPECT_GE(sharedDigits(model.fitMetrics(0).rmse, 0.205177424076185e-3), 9.0);
}

TEST(ResponseSurfaceReference, LongleyWhoseSixteenCasesAllowTheLinearOrderOnly)
{
    const Model model = fit(longley());

    expectCoefficients(model, {{-3482258.63459582, 890420.383607373},
                               {15.0618722713733, 84.9149257747669},
                               {-0.358191792925910e-1, 0.334910077722432e-1},
                               {-2.02022980381683, 0.488399681651699},
                               {-1.03322686717359, 0.214274163161675},
                               {-0.511041056535807e-1, 0.226073200069370},
                               {1829.15146461355, 455.478499142212}});
    EXPECT_NEAR(model.fitMetrics(0).r2, 0.995479004577296, 1e-13);
    EXPECT_GE(sharedDigits(model.fitMetrics(0).rmse, 304.854073561965), 9.0);
}

TEST(ResponseSurfaceReference, UniformityOfVapourDeposition)
{
    const Model model = fit(codedVapourDeposition());

    // 1, c1, c2, c1^2, c1 c2, c2^2
    expectPublished(model, 0,
                    {{5.86613, 0.41773},
                     {-1.90967, 0.36103},
                     {-0.22408, 0.36103},
                     {0.13373, 0.60733},
                     {1.68617, 0.71766},
                     {0.03373, 0.60733}});
    const FitMetrics metrics = model.fitMetrics(0);
    EXPECT_DOUBLE_EQ(rounded(metrics.rmse, 4), 0.7235);
    EXPECT_DOUBLE_EQ(rounded(metrics.r2, 4), 0.8716);
    EXPECT_DOUBLE_EQ(rounded(metrics.adjustedR2, 4), 0.7431);
    EXPECT_EQ(metrics.cases - metrics.terms, 5u);
}

TEST(ResponseSurfaceReference, StressOfVapourDeposition)
{
    const Model model = fit(codedVapourDeposition());

    // 1, c1, c2, c1^2, c1 c2, c2^2
    expectPublished(model, 1,
                    {{7.79004, 0.04450},
                     {0.73593, 0.03846},
                     {0.49686, 0.03846},
                     {-0.52873, 0.06469},
                     {0.06943, 0.07644},
                     {-0.11873, 0.06469}});
    EXPECT_DOUBLE_EQ(rounded(model.fitMetrics(1).rmse, 5), 0.07707);
    EXPECT_DOUBLE_EQ(rounded(model.fitMetrics(1).r2, 5), 0.99175);
}
