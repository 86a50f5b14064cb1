#include <plot/model/ReportPage.h>

#include "../../../session/tests/CountOf.h"
#include "../../../session/tests/CvdSession.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

TEST(ReportPage, HasThePicturesOfEachOutput)
{
    CaseSession surface = cvdSession();
    CaseSession kriging = cvdSession(CaseSession::Kriging);

    // Actual, residuals, coefficients, contour and two sweeps of two outputs.
    EXPECT_EQ(countOf(ReportPage::html(surface), "<svg "), 12u);
    EXPECT_EQ(countOf(ReportPage::html(kriging), "<svg "), 10u) << "without coefficients";
}

TEST(ReportPage, ShowsAllTermsOfManyInputs)
{
    // 35 terms of seven inputs, more than fit into the height of the other pictures.
    CaseTable table;
    table.cases = 60;
    unsigned int state = 1;
    for (int i = 0; i < 8; ++i) {
        table.columns.emplace_back().name = "x" + std::to_string(i);
        for (std::size_t row = 0; row < table.cases; ++row) {
            state = 1664525u * state + 1013904223u;
            table.columns.back().numbers.push_back(static_cast<double>(state >> 8));
        }
    }
    CaseSession session(std::move(table), {{0, 1, 2, 3, 4, 5, 6}, {7}}, {},
                        CaseSession::ResponseSurface);

    EXPECT_EQ(countOf(ReportPage::html(session), " terms fit here"), 0u);
}

TEST(ReportPage, RanksTheInputs)
{
    CaseSession session = cvdSession();

    EXPECT_EQ(countOf(ReportPage::html(session), "<tr><td>Pressure</td><td>100 %</td>"), 2u)
        << "the strongest input of both outputs";
}

TEST(ReportPage, SaysWhyASweepCannotBeDrawnAndShowsTheOthers)
{
    CaseTable table = cvdCases();
    for (double& value : table.columns[0].numbers) {
        value *= 2e306; // up to 1.6e308
    }
    CaseSession session(std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);

    const std::string html = ReportPage::html(session);

    EXPECT_EQ(countOf(html, "<p>There is no picture of kind sweep. &quot;Pressure&quot; holds "
                            "values that are not finite, or too large to be drawn.</p>"),
              1u);
    EXPECT_EQ(countOf(html, "<svg "), 4u);
}

TEST(ReportPage, AnOutputThatCannotBeDrawnDoesNotCostTheOthers)
{
    CaseTable table = cvdCases();
    for (double& value : table.columns[2].numbers) {
        value *= 1e307; // the largest is 7.4e307: a picture needs margins
    }
    table.columns[2].numbers[0] = -1.5e308;
    CaseSession session(std::move(table), {{0, 1}, {2, 3}}, {}, CaseSession::ResponseSurface);

    const std::string html = ReportPage::html(session);

    EXPECT_EQ(countOf(html, "<svg "), 6u);
    EXPECT_EQ(countOf(html, "<p>There is no picture of kind actual. "), 1u);
}
