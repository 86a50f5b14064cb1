#include <session/diagnosis/Diagnosis.h>
#include <session/text/DecimalText.h>

#include "SampleCases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace {
using Columns = std::vector<DiagnosedCases::Column>;

/** A smooth output with a little noise. */
DiagnosedCases measured(Columns inputs)
{
    DiagnosedCases cases = casesOf(std::move(inputs), {{"y", {}}});
    const std::vector<double> noise = spread(cases.count(), 0.7320508075688772);
    for (std::size_t row = 0; row < cases.count(); ++row) {
        double sum = 0.0;
        for (const DiagnosedCases::Column& input : cases.inputs) {
            sum += input.values[row] + 0.3 * input.values[row] * input.values[row];
        }
        cases.outputs[0].values.push_back(sum + 0.1 * noise[row]);
    }
    return cases;
}

double leastBut(std::vector<double> values, std::size_t row)
{
    values.erase(values.begin() + static_cast<std::ptrdiff_t>(row));
    return *std::min_element(values.begin(), values.end());
}

/** All combinations of these levels, then axial points at a distance, then centre points. */
Columns design(std::size_t inputs, const std::vector<double>& levels, double axial,
               std::size_t centres)
{
    std::size_t corners = 1;
    for (std::size_t k = 0; k < inputs; ++k) {
        corners *= levels.size();
    }
    Columns columns;
    std::size_t step = 1;
    for (std::size_t k = 0; k < inputs; ++k) {
        DiagnosedCases::Column column = {std::string(1, static_cast<char>('A' + k)), {}};
        for (std::size_t row = 0; row < corners; ++row) {
            column.values.push_back(levels[row / step % levels.size()]);
        }
        for (std::size_t other = 0; axial > 0.0 && other < inputs; ++other) {
            column.values.push_back(other == k ? axial : 0.0);
            column.values.push_back(other == k ? -axial : 0.0);
        }
        column.values.resize(column.values.size() + centres, 0.0);
        columns.push_back(column);
        step *= levels.size();
    }
    return columns;
}
} // namespace

TEST(Diagnosis, GoodDesignsHaveNoFindings)
{
    EXPECT_EQ(textsOf(Diagnosis::of(measured(design(2, {-1, 1}, std::sqrt(2.0), 5))).findings),
              Texts())
        << "central composite of two inputs";
    EXPECT_EQ(textsOf(Diagnosis::of(measured(design(4, {-1, 1}, 2.0, 6))).findings), Texts())
        << "central composite of four inputs";
    EXPECT_EQ(textsOf(Diagnosis::of(measured(design(3, {-1, 0, 1}, 0.0, 3))).findings), Texts())
        << "three levels of three inputs";
    EXPECT_EQ(
        textsOf(Diagnosis::of(measured({{"A", spread(30)}, {"B", otherSpread(30)}})).findings),
        Texts())
        << "space-filling";
}

TEST(Diagnosis, TheWorstFindingComesFirst)
{
    DiagnosedCases cases = measured({{"A", spread(30)}, {"B", std::vector<double>(30, 1.0)}});
    cases.outputs[0].values[3] = 500.0;

    const Diagnosis diagnosis = Diagnosis::of(cases);

    ASSERT_EQ(diagnosis.findings.size(), 2u);
    EXPECT_EQ(diagnosis.findings[0].kind, "farCase");
    EXPECT_EQ(diagnosis.findings[1].kind, "constantInput");
}

TEST(Diagnosis, OfManyCasesASampleIsCompared)
{
    EXPECT_EQ(Diagnosis::of(measured({{"A", spread(21000)}})).comparedCases, 2000u);
    EXPECT_EQ(Diagnosis::of(measured({{"A", spread(30)}})).comparedCases, 30u);
    EXPECT_TRUE(Diagnosis::of(casesOf({{"A", {}}}, {{"y", {}}})).findings.empty());
}

TEST(Diagnosis, EachOfManyCasesCounts)
{
    DiagnosedCases cases = measured({{"A", spread(21000)}, {"B", std::vector<double>(21000, 1.0)}});
    cases.inputs[1].values[12345] = 3.5;
    cases.outputs[0].values[4321] = -999.0;

    EXPECT_EQ(textsOf(Diagnosis::of(cases).findings),
              (Texts{"missingCode: Case 4322 has y = -999, all others lie between " +
                         shownFigure(leastBut(cases.outputs[0].values, 4321)) + " and " +
                         shownFigure(cases.outputs[0].maximum()) +
                         ": the model takes it for a measurement; if it marks a missing value, "
                         "read it as one.",
                     "nearlyConstantInput: B is 1 in every case but case 12346: its effect rests "
                     "on that case alone; vary it in more cases or leave it out of the inputs."}));
}

TEST(Diagnosis, ADependenceOfManyInputsIsOneOfTheComparedCases)
{
    Columns columns;
    for (std::size_t k = 0; k < 150; ++k) {
        columns.push_back({"V" + std::to_string(k), spread(11800, std::sqrt(3.0 * k + 2.0))});
    }
    columns.back().values = columns.front().values;
    columns.back().values[6172] += 0.5; // no case of the sample

    const Diagnosis diagnosis = Diagnosis::of(casesOf(columns, {{"y", spread(11800)}}));

    ASSERT_FALSE(diagnosis.findings.empty());
    EXPECT_EQ(diagnosis.findings[0].text.substr(0, 34), "V149 = V0 in every compared case: ");
}
