// The page of a fit as users get it.

#include "../../session/tests/CountOf.h"
#include "ProgramFixture.h"

#include <gtest/gtest.h>

#include <string>

namespace {
class ReportOption : public Program
{};
} // namespace

TEST_F(ReportOption, FitWritesAPageWithPictures)
{
    const Outcome outcome =
        run("fit cvd.csv -x Pressure,H2/WF6 -y Stress,Uniformity --report fit.html");

    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_TRUE(beginsWith(outcome.out, "Cases   11 read")) << "the text comes all the same";
    const std::string html = folder.read("fit.html");
    EXPECT_EQ(countOf(html, "<svg "), 12u)
        << "actual, residuals, coefficients, contour and two sweeps of each";
    EXPECT_EQ(countOf(html, "</svg>"), 12u);
    EXPECT_EQ(countOf(html, "<?xml"), 0u);
    EXPECT_EQ(countOf(html, "<script"), 0u);
    EXPECT_EQ(countOf(html, "href="), 0u);
}

TEST_F(ReportOption, ThePageNamesItsCommandAndIsTheSameButForTheTime)
{
    const auto page = [this](const std::string& name) {
        run("fit 'cvd.csv' -x Pressure,H2/WF6 -y Stress -m kriging --report " + name);
        return folder.read(name);
    };
    const auto without = [](std::string html, const std::string& part) {
        html.erase(html.find(part), part.size());
        const std::size_t date = html.find("<tr><td>Date</td>");
        return html.erase(date, html.find('\n', date) - date);
    };
    const std::string one = page("one.html");
    const std::string two = page("two.html");

    EXPECT_EQ(countOf(one, "<svg "), 5u);
    EXPECT_EQ(countOf(one, "<td>surrogate fit cvd.csv -x Pressure,H2/WF6 -y Stress -m kriging "
                           "--report one.html</td>"),
              1u);
    EXPECT_EQ(without(one, "one.html"), without(two, "two.html"));
}

TEST_F(ReportOption, ThePageNeedsAPlaceAndANameOfHtml)
{
    for (const std::string name : {"r.pdf", "html", "r.html.txt"}) {
        expectFailure("fit cvd.csv -y Stress --report " + name, 2,
                      "--report writes an HTML page, whose name ends with .html, which \"" + name +
                          "\" does not; a browser prints the page as PDF.");
    }
    EXPECT_EQ(run("fit cvd.csv -y Stress --report missing/a.html").exitCode, 5);
}

TEST_F(ReportOption, AHugeInputIsNotSweptOnThePageButTheOthersAre)
{
    folder.write("far.csv", "x,z,y\n0,0,1\n1e308,0,3\n0,1,0\n1.7e308,1,4\n1e308,2,1\n"
                            "0.5e308,3,4\n");

    const Outcome outcome = run("fit far.csv -x x,z -y y --report far.html");

    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_FALSE(contains(outcome.err, "overflow"));
    EXPECT_EQ(countOf(folder.read("far.html"),
                      "<p>There is no picture of kind sweep. "
                      "&quot;x&quot; holds values that are not finite, or too large to be "
                      "drawn.</p>"),
              1u);
}
