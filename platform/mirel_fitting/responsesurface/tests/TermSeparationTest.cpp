#include <mirel_fitting/responsesurface/TermSeparation.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

using namespace fittingtest;

namespace {
using Terms = std::vector<TermFormula::Term>;

const Column a = {-1, 1, -1, 1, -1, 1, -1, 1};
const Column b = {-1, -1, 1, 1, -1, -1, 1, 1};
const Column constant(8, 3.0);

TermSeparation separation(PolynomialTerms terms, const std::vector<Column>& inputs,
                          const std::string& formula = "")
{
    return {{terms, {}, formula}, pointersTo(inputs), inputs.front().size()};
}
} // namespace

TEST(TermSeparation, CountsTermsAndNamesWhatDroppedOnesDependOn)
{
    struct
    {
        TermSeparation separation;
        std::size_t rank;
        Terms dropped;
        std::vector<Terms> others;
    } const rows[] = {
        {separation(PolynomialTerms::Linear, {a, b}), 3, {}, {}},
        {separation(PolynomialTerms::Interactions, {a, b}), 4, {}, {}},
        {separation(PolynomialTerms::Quadratic, {a, b}), 4, {{0, 0}, {1, 1}}, {{}, {}}},
        {separation(PolynomialTerms::Quadratic, {a, b, constant}), 4, {{0, 0}, {1, 1}}, {{}, {}}},
        {separation(PolynomialTerms::Chosen, {a, b}, "V1:V2"), 4, {}, {}},
        {separation(PolynomialTerms::Chosen, {a, a}, "V1:V2"), 2, {}, {}},
        {separation(PolynomialTerms::Interactions, {{0, 1, 0, 1, 2}, {0, 0, 1, 1, 1}}), 4, {}, {}},
        {separation(PolynomialTerms::Quadratic, {{0, 1, 0, 1}, {0, 0, 1, 1}}),
         4,
         {{0, 0}, {1, 1}},
         {{}, {}}},
        {separation(PolynomialTerms::Quadratic, {{-1, 1, 0, 0, 0}, {0, 0, -1, 1, 0}}),
         5,
         {{0, 1}},
         {{}}},
        {separation(PolynomialTerms::Quadratic,
                    {{-1, 1, -1, 1, 0, 0, 0, 0}, {-1, -1, 1, 1, 0, 0, 0, 0}}),
         5,
         {{1, 1}},
         {{{0, 0}}}},
    };

    for (const auto& row : rows) {
        EXPECT_EQ(row.separation.rank, row.rank);
        ASSERT_EQ(row.separation.dependences.size(), row.dropped.size());
        for (std::size_t k = 0; k < row.dropped.size(); ++k) {
            EXPECT_EQ(row.separation.dependences[k].term, row.dropped[k]);
            EXPECT_EQ(row.separation.dependences[k].others, row.others[k]);
        }
    }
}

TEST(TermSeparation, TakesManyCases)
{
    Random random(4);
    const Column x = random.column(5000, 0.0, 1.0);
    const Column y = random.column(5000, 0.0, 1.0);

    EXPECT_EQ(separation(PolynomialTerms::Quadratic, {x, y}).rank, 6u);
    EXPECT_EQ(separation(PolynomialTerms::Quadratic, {x, y, x}).rank, 6u);
}
