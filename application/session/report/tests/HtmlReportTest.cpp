#include <session/report/HtmlReport.h>

#include "CvdSession.h"

#include <mirel_property/tests/TextParts.h>

#include <QXmlStreamReader>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
std::string htmlOf(CaseSession session)
{
    return HtmlReport::text(session, {});
}

/** What a reader of XML finds wrong; the page is written so that it is well-formed but for the
 *  declaration of its character set, which HTML leaves open. */
std::string faultOf(std::string html)
{
    const std::string meta = "<meta charset=\"utf-8\">";
    html.replace(html.find(meta), meta.size(), "<meta charset=\"utf-8\"/>");
    QXmlStreamReader reader(QByteArray::fromStdString(html));
    while (!reader.atEnd()) {
        reader.readNext();
    }
    return reader.errorString().toStdString();
}
} // namespace

TEST(HtmlReport, OfAResponseSurfaceHasItsStatistics)
{
    const std::string html = htmlOf(cvdSession());

    EXPECT_TRUE(beginsWith(html, "<!DOCTYPE html>\n<html lang=\"en\">\n"));
    EXPECT_TRUE(contains(html, "<h1>Response surface of Uniformity, Stress</h1>"));
    EXPECT_TRUE(
        contains(html, "<tr><td>Cases</td><td>11 read, 11 valid, 0 excluded, 0 invalid</td></tr>"));
    EXPECT_TRUE(
        contains(html, "<tr><td>H2/WF6</td><td>V2</td><td>2</td><td>10</td><td>2</td></tr>"));
    EXPECT_TRUE(contains(html, "<h2>Stress</h2>"));
    EXPECT_TRUE(contains(html, "<h3>Coefficients</h3>"));
    EXPECT_TRUE(contains(html, "<td>Pressure * H2/WF6</td>"));
    EXPECT_TRUE(contains(html, "<h3>Analysis of variance</h3>"));
    EXPECT_TRUE(contains(html, "<td>Lack of fit</td>"));
    EXPECT_TRUE(contains(html, "The stationary point is a "));
    EXPECT_TRUE(contains(html, "<h3>Equation</h3>\n<pre>"));
    EXPECT_EQ(faultOf(html), "");
}

TEST(HtmlReport, OfKrigingHasItsParametersAndWarnings)
{
    const std::string html = htmlOf(cvdSession(CaseSession::Kriging));

    EXPECT_TRUE(contains(html, "<h1>Kriging of Uniformity, Stress</h1>"));
    EXPECT_TRUE(contains(html, "<td>correlation length of Pressure</td>"));
    EXPECT_TRUE(contains(html, "<p class=\"warning\">Warning: "));
    EXPECT_FALSE(contains(html, "Equation"));
    EXPECT_EQ(faultOf(html), "");
}

TEST(HtmlReport, PicturesStandWithTheirOutputAsTheyAre)
{
    CaseSession session = cvdSession();

    const std::string html =
        HtmlReport::text(session, {{{"<svg id=\"a\"/>"}, {}}, {{"<svg id=\"b\"/>"}, {}}});

    const std::size_t stress = html.find("<h2>Stress</h2>");
    EXPECT_LT(html.find("<div><svg id=\"a\"/></div>"), stress);
    EXPECT_GT(html.find("<div><svg id=\"b\"/></div>"), stress);
}

TEST(HtmlReport, BeginsWithHowWellEachOutputIsPredicted)
{
    const std::string surface = htmlOf(cvdSession());
    const std::string kriging = htmlOf(cvdSession(CaseSession::Kriging));

    EXPECT_TRUE(contains(surface, "</h1>\n<p class=\"verdict poor\"><strong>Uniformity</strong>: "
                                  "left-out cases are hardly predicted (Q2 0.354), with a "
                                  "typical error of 1.09, 21 % of the range of the cases.</p>\n"));
    EXPECT_TRUE(contains(surface,
                         "<p class=\"verdict good\"><strong>Stress</strong>: left-out cases "
                         "are predicted well (Q2 0.972"));
    EXPECT_TRUE(contains(kriging, " (Q2 "));
}

TEST(HtmlReport, SaysThatTooFewCasesTellNothing)
{
    CaseSession session(cvdCases(), {{0, 1}, {3}}, {6, 7, 8, 9, 10}, CaseSession::ResponseSurface);

    EXPECT_TRUE(contains(
        HtmlReport::text(session, {}),
        "<p class=\"verdict\"><strong>Stress</strong>: there are too few cases to leave "
        "one out, so that there is no case to estimate the error of predictions from.</p>"));
}

TEST(HtmlReport, SaysWhereItComesFrom)
{
    CaseSession session = cvdSession();

    const std::string html =
        HtmlReport::text(session, {}, {"surrogate fit 'a b.csv'", "1.2.3", "2026-11-22 08:00"});

    EXPECT_TRUE(contains(html, "<tr><td>Command</td><td>surrogate fit &#39;a b.csv&#39;</td></tr>\n"
                               "<tr><td>Version</td><td>1.2.3</td></tr>\n"
                               "<tr><td>Date</td><td>2026-11-22 08:00</td></tr>"));
    EXPECT_FALSE(contains(htmlOf(cvdSession()), "<td>Command</td>"));
}

TEST(HtmlReport, RanksTheInputsOfEachOutput)
{
    CaseSession session = cvdSession();
    HtmlReport::OutputParts parts;
    parts.ranking = {{1, 1.0}, {0, 0.25}};

    const std::string html = HtmlReport::text(session, {parts});

    EXPECT_TRUE(contains(html,
                         "<tr><td>H2/WF6</td><td>100 %</td><td class=\"bar\"><span class=\"share\" "
                         "style=\"width:100%\"></span></td></tr>\n"
                         "<tr><td>Pressure</td><td>25 %</td>"));
    EXPECT_EQ(faultOf(html), "");
}

TEST(HtmlReport, NamesOfTheUserAreTextWhateverTheyHold)
{
    CaseTable table = cvdCases();
    table.columns[0].name = "<script>alert('p')</script>";
    table.columns[2].name = "a & b < \"c\"";
    const std::string html =
        htmlOf({std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface});

    EXPECT_FALSE(contains(html, "<script"));
    EXPECT_TRUE(contains(html, "&lt;script&gt;alert(&#39;p&#39;)&lt;/script&gt;"));
    EXPECT_TRUE(contains(html, "<h2>a &amp; b &lt; &quot;c&quot;</h2>"));
    EXPECT_EQ(faultOf(html), "");
}

TEST(HtmlReport, StandsAloneAndIsTheSameOfTheSameSession)
{
    const std::string html = htmlOf(cvdSession());

    for (const char* part : {"<script", "http", "src=", "href=", "url(", "@import"}) {
        EXPECT_FALSE(contains(html, part)) << part;
    }

    CaseSession session = cvdSession(CaseSession::Kriging);
    const std::string first = HtmlReport::text(session, {});

    EXPECT_EQ(HtmlReport::text(session, {}), first);
}

TEST(HtmlReport, CharactersThatNoDocumentCarriesAreShown)
{
    EXPECT_EQ(HtmlReport::escaped("a\nb\x01"), "a\\x0Ab\\x01");
    EXPECT_EQ(HtmlReport::escaped("\xFF"), "\\xFF");
    EXPECT_EQ(HtmlReport::escaped("\xC3\xA4"), "\xC3\xA4");
}
