#include <plot/drawing/Picture.h>

#include "SvgTexts.h"
#include "plot/drawing/PlotColours.h"

#include "../../../session/tests/CountOf.h"
#include "../../../session/tests/TemporaryFolder.h"

#include <session/text/SessionErrors.h>

#include <QHash>
#include <QImage>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace {
/** A parabola over 0 to 10 with a band and a case on it. */
SweepPicture sweep()
{
    SweepPicture picture;
    picture.title = "The title";
    picture.inputName = "Pressure";
    picture.outputName = "Stress";
    for (int i = 0; i <= 10; ++i) {
        picture.inputs.push_back(i);
        picture.model.push_back(i * i);
        picture.lower.push_back(i * i - 5.0);
        picture.upper.push_back(i * i + 5.0);
    }
    picture.caseInputs = {3.0};
    picture.caseOutputs = {9.0};
    picture.modelLabel = "the model";
    picture.bandLabel = "the band";
    picture.caseLabel = "the cases";
    picture.caption = "The caption.";
    return picture;
}

/** The same times a factor, plus an offset. */
SweepPicture sweep(double factor, double offset)
{
    SweepPicture picture = sweep();
    for (auto* column : {&picture.inputs, &picture.model, &picture.lower, &picture.upper,
                         &picture.caseInputs, &picture.caseOutputs}) {
        for (double& value : *column) {
            value = factor * value + offset;
        }
    }
    return picture;
}

/** x y over [0, 10] x [0, 10]. */
ContourPicture contour()
{
    ContourPicture picture;
    picture.title = "The title";
    picture.xName = "across";
    picture.yName = "up";
    picture.outputName = "height";
    for (int i = 0; i <= 10; ++i) {
        picture.x.push_back(i);
        picture.y.push_back(i);
        for (int j = 0; j <= 10; ++j) {
            picture.values.push_back(i * j);
        }
    }
    picture.caseX = {0.0, 10.0};
    picture.caseY = {0.0, 10.0};
    picture.caseLabel = "the cases";
    return picture;
}

ScatterPicture scatter()
{
    ScatterPicture picture;
    picture.title = "The title";
    picture.xName = "Stress, actual";
    picture.yName = "Stress, predicted";
    picture.x = {1.0, 2.0, 3.0};
    picture.y = {1.1, 4.9, 2.0};
    picture.reference = ScatterPicture::DiagonalOfOneScale;
    picture.referenceLabel = "the reference";
    picture.caseLabel = "the cases";
    picture.caption = "The caption.";
    return picture;
}

ScatterPicture residuals()
{
    ScatterPicture picture = scatter();
    picture.yName = "the residuals";
    picture.y = {-0.1, -0.3, 0.2};
    picture.reference = ScatterPicture::Zero;
    return picture;
}

/** So many terms, named after their number. */
CoefficientPicture coefficients(int count)
{
    CoefficientPicture picture;
    picture.title = "The title";
    picture.valueName = "coefficient";
    picture.caption = "The caption.";
    for (int i = 0; i < count; ++i) {
        const double estimate = count - i;
        picture.terms.push_back(
            {{"term " + std::to_string(i)}, estimate, estimate - 0.5, estimate + 0.5});
    }
    return picture;
}

std::string svgOf(PictureData data, PictureSize size = {})
{
    return Picture({std::move(data)}, size).toSvg();
}

bool hasPixel(const QImage& image, const QRect& place, const QColor& colour)
{
    for (int x = place.left(); x <= place.right(); ++x) {
        for (int y = place.top(); y <= place.bottom(); ++y) {
            if (image.pixelColor(x, y) == colour) {
                return true;
            }
        }
    }
    return false;
}

bool hasColour(const std::string& svg, const QColor& colour)
{
    return svg.find(colour.name().toStdString()) != std::string::npos;
}

std::vector<PictureData> oneOfEachKind()
{
    return {sweep(), contour(), scatter(), residuals(), coefficients(3)};
}

void expectTexts(const std::string& svg, const std::vector<std::string>& texts)
{
    for (const std::string& text : texts) {
        EXPECT_TRUE(hasText(svg, text)) << text;
    }
}
} // namespace

TEST(Picture, ASweepNamesEverythingItShows)
{
    const std::string svg = svgOf(sweep());

    expectTexts(svg, {"The title", "Pressure", "Stress", "the model", "the band", "the cases",
                      "The caption."});
    EXPECT_TRUE(hasColour(svg, PlotColours::model));
    EXPECT_TRUE(hasColour(svg, PlotColours::band));
    EXPECT_TRUE(hasColour(svg, PlotColours::cases));
    // The band reaches from -5 to 105.
    expectTexts(svg, {"0", "100"});
    EXPECT_FALSE(hasText(svg, "120"));
}

TEST(Picture, ASweepWithoutBandAndCasesHasNoneInItsLegend)
{
    SweepPicture picture = sweep();
    for (auto* column :
         {&picture.lower, &picture.upper, &picture.caseInputs, &picture.caseOutputs}) {
        column->clear();
    }

    const std::string svg = svgOf(picture);

    EXPECT_TRUE(hasText(svg, "the model"));
    EXPECT_FALSE(hasText(svg, "the band"));
    EXPECT_FALSE(hasText(svg, "the cases"));
}

TEST(Picture, AContourHasLabelledLinesAndAColourBar)
{
    const std::string svg = svgOf(contour());

    expectTexts(svg, {"across", "up", "height", "the cases"});
    // Once at the line, once at the bar.
    EXPECT_EQ(countOfText(svg, "40"), 2);
    EXPECT_TRUE(hasColour(svg, PlotColours::viridis(0.0)));
    EXPECT_TRUE(hasColour(svg, PlotColours::viridis(1.0)));
}

TEST(Picture, AContourMarksItsExtremesAndRepeatedCases)
{
    ContourPicture picture = contour();
    picture.extremes = {{0.0, 0.0, 0.0}, {10.0, 10.0, 99.98765}};
    picture.caseCounts = {1, 3};

    const std::string svg = svgOf(picture);

    expectTexts(svg, {"min 0", "max 99.99", "\303\2273"});
    EXPECT_FALSE(hasText(svg, "\303\2271"));
}

TEST(Picture, AContourShadesWhatLiesOutsideTheCases)
{
    ContourPicture picture = contour();
    picture.isOutside.assign(picture.values.size(), 0);
    EXPECT_FALSE(hasText(svgOf(picture), "outside the cases"));
    picture.isOutside.back() = 1;

    const std::string svg = svgOf(picture);

    EXPECT_TRUE(hasText(svg, "outside the cases"));
    EXPECT_TRUE(hasColour(svg, PlotColours::outside));
}

TEST(Picture, AScatterNamesItsLinesAndNumbersItsMarks)
{
    for (ScatterPicture picture : {scatter(), residuals()}) {
        expectTexts(svgOf(picture),
                    {picture.xName, picture.yName, "the reference", "the cases", "The caption."});
        EXPECT_FALSE(hasColour(svgOf(picture), PlotColours::limits));
        picture.marks = {{1, 17}, {2, 23}};
        picture.limit = 0.5;
        picture.limitLabel = "the limits";

        const std::string svg = svgOf(picture);

        expectTexts(svg, {"17", "23", "the limits"});
        EXPECT_TRUE(hasColour(svg, PlotColours::limits));
    }
}

TEST(Picture, TheReferenceOfAScatterIsInThePicture)
{
    // 4.5 is beyond the actual values, and stands at both axes.
    EXPECT_EQ(countOfText(svgOf(scatter()), "4.5"), 2);

    ScatterPicture diagonal = scatter();
    diagonal.reference = ScatterPicture::Diagonal;
    diagonal.x = {-20.0, 0.0, 20.0};
    EXPECT_EQ(countOfText(svgOf(diagonal), "20"), 2);

    ScatterPicture zero = residuals();
    zero.y = {2.1, 2.2, 2.3};
    EXPECT_TRUE(hasText(svgOf(zero), "0.0"));
}

TEST(Picture, OneCaseIsEnough)
{
    for (ScatterPicture picture : {scatter(), residuals()}) {
        picture.x = picture.y = {0.0};
        expectTexts(svgOf(picture), {picture.xName});
    }
}

TEST(Picture, CoefficientsThatAreNotSignificantAreGrey)
{
    CoefficientPicture picture = coefficients(2);
    EXPECT_FALSE(hasColour(svgOf(picture), PlotColours::insignificant));

    picture.terms[1].isSignificant = false;

    EXPECT_TRUE(hasColour(svgOf(picture), PlotColours::insignificant));
    EXPECT_TRUE(hasColour(svgOf(picture), PlotColours::model));
}

TEST(Picture, TermsAreProductsAndSquaresOfTheirFactors)
{
    CoefficientPicture picture = coefficients(3);
    picture.terms[0].factors = {"Pressure", "Flow"};
    picture.terms[1].factors = {"Flow", "Flow"};
    const std::string longName = std::string(60, 'a');
    picture.terms[2].factors = {longName, longName + 'b'};

    const std::string svg = svgOf(picture);

    expectTexts(svg, {"Pressure \303\227 Flow", "Flow\302\262"});
    EXPECT_EQ(countOf(svg, " \303\227 "), 2u) << "both factors are shortened";
    EXPECT_EQ(countOf(svg, longName), 0u);
}

TEST(Picture, NamesMayHoldMarkupAndAnyLetters)
{
    SweepPicture picture = sweep();
    picture.title = "a < b & c";
    picture.inputName = "<b>T & p</b>";
    picture.outputName = "\316\224\317\203";

    expectTexts(svgOf(picture), {picture.title, picture.inputName, picture.outputName});
}

TEST(Picture, NumbersOfAnySizeHaveLabels)
{
    EXPECT_TRUE(hasText(svgOf(sweep(1e12, 0.0)), "4e12"));
    EXPECT_TRUE(hasText(svgOf(sweep(1e-12, 0.0)), "4e-12"));
    EXPECT_TRUE(hasText(svgOf(sweep(-1.0, 0.0)), "-4"));
    EXPECT_TRUE(hasText(svgOf(sweep(1.0, 1e12)), "1.00000000001e12"));
}

TEST(Picture, AContourShowsCasesAtItsCorners)
{
    for (const PictureSize size :
         {PictureSize(), PictureSize{PictureSize::minPixels, PictureSize::minPixels}}) {
        EXPECT_EQ(countOf(svgOf(contour(), size), "<circle"), 2u);
    }
}

TEST(Picture, AConstantContourHasOneColourAndNoLines)
{
    ContourPicture picture = contour();
    for (double& value : picture.values) {
        value = 7.0 + 1e-15 * value;
    }

    const std::string svg = svgOf(picture);

    EXPECT_TRUE(hasColour(svg, PlotColours::viridis(0.5)));
    EXPECT_LE(countOfText(svg, "7.0"), 1) << "at the bar only";
}

TEST(Picture, LogarithmsHaveLabelsAtPowersOfTen)
{
    SweepPicture swept = sweep();
    swept.lower.clear();
    swept.upper.clear();
    swept.isLogarithmic = true;
    for (std::size_t i = 0; i < swept.model.size(); ++i) {
        swept.model[i] = std::pow(10.0, 0.5 * static_cast<double>(i) - 3.0);
    }
    swept.caseOutputs.assign(swept.caseOutputs.size(), 1.0);
    ContourPicture levels = contour();
    levels.isLogarithmic = true;
    for (double& value : levels.values) {
        value = std::pow(10.0, value / 20.0 - 2.0);
    }
    std::vector<PictureData> pictures = {swept, levels};
    for (ScatterPicture cases : {scatter(), residuals()}) {
        cases.isLogarithmic = true;
        cases.x = {0.01, 2.0, 300.0};
        cases.limit = 0.5;
        pictures.push_back(cases);
    }
    for (const PictureData& picture : pictures) {
        expectTexts(svgOf(picture), {"0.1", "1", "10"});
    }
    swept.model[0] = -1.0;
    EXPECT_FALSE(hasText(svgOf(swept), "0.1")) << "no logarithm shows a negative number";
}

TEST(Picture, OfManyCasesOneIsDrawnWhereTheyCoverEachOther)
{
    ScatterPicture picture = scatter();
    for (int i = 0; i < 97; ++i) {
        picture.x.push_back(2.0 + 0.001 * i);
        picture.y.push_back(2.0);
    }
    EXPECT_EQ(countOf(svgOf(picture), "<circle"), 100u);

    picture.x.assign(3000, 1.0);
    picture.x.push_back(2.0);
    picture.y = picture.x;
    EXPECT_EQ(countOf(svgOf(picture), "<circle"), 2u);
}

TEST(Picture, CoefficientsStandBelowEachOtherInTheirOrder)
{
    const std::string svg = svgOf(coefficients(4));

    EXPECT_LT(svg.find(">term 0<"), svg.find(">term 3<"));
    EXPECT_EQ(countOf(svg, "<circle"), 4u);
}

TEST(Picture, GrowsWithTheTermsWhereNoSizeIsGiven)
{
    const std::string svg = Picture({coefficients(300)}).toSvg();

    EXPECT_TRUE(hasText(svg, "term 299"));
    EXPECT_EQ(countOf(svg, "<circle"), 300u);
    EXPECT_EQ(countOf(svg, " terms fit here"), 0u);
    EXPECT_TRUE(hasText(Picture({coefficients(2000)}).toSvg(), "term 0")) << "up to a limit";
}

TEST(Picture, TermsThatDoNotFitAreLeftOutAndCounted)
{
    const std::string svg = svgOf(coefficients(300));

    EXPECT_TRUE(hasText(svg, "term 0"));
    EXPECT_FALSE(hasText(svg, "term 299"));
    const std::string shown = std::to_string(countOf(svg, "<circle"));
    EXPECT_TRUE(hasText(svg, "The caption. " + shown + " of 300 terms fit here."));
}

TEST(Picture, CoefficientsWithoutLimitsAreDrawnAlone)
{
    CoefficientPicture picture = coefficients(1);
    picture.terms[0].lower = std::nan("");
    picture.terms[0].upper = std::nan("");

    EXPECT_EQ(countOf(svgOf(picture), "<circle"), 1u);
}

TEST(Picture, ALongNameIsCutInItsMiddle)
{
    SweepPicture picture = sweep();
    picture.inputName = "begin" + std::string(300, 'm') + "end";

    const std::vector<std::string> texts = textsOf(svgOf(picture));

    EXPECT_TRUE(std::any_of(texts.begin(), texts.end(), [](const std::string& text) {
        return text.rfind("begin", 0) == 0 && text.size() < 200 &&
               text.find("\342\200\246") != std::string::npos;
    }));
}

TEST(Picture, SeveralPanelsShareAFile)
{
    SweepPicture other = sweep();
    other.title = "Another title";

    const std::string svg = Picture({sweep(), other, contour()}).toSvg();

    EXPECT_TRUE(hasText(svg, "The title"));
    EXPECT_TRUE(hasText(svg, "Another title"));
    EXPECT_NE(svg.find("<svg width=\"1600\" height=\"1200\" viewBox=\"0 0 1600 1200\""),
              std::string::npos);
}

TEST(Picture, EffectsAreSmallPanelsUnderOneTitle)
{
    EffectsPicture effects;
    effects.title = "The effects";
    effects.caption = "What is held.";
    for (int i = 0; i < 3; ++i) {
        effects.effects.push_back(sweep());
        SweepPicture& effect = effects.effects.back();
        effect.inputName = "input " + std::to_string(i);
        effect.axisOutputs = {-1000.0, 1000.0};
        effect.title.clear();
        effect.caption.clear();
        effect.modelLabel.clear();
        effect.bandLabel.clear();
        effect.caseLabel.clear();
    }

    const std::string svg = Picture({effects}).toSvg();

    for (const char* text : {"The effects", "What is held.", "input 0", "input 2"}) {
        EXPECT_EQ(countOfText(svg, text), 1) << text;
    }
    EXPECT_EQ(countOfText(svg, "1000"), 3) << "one axis";
    EXPECT_NE(svg.find("<svg width=\"1140\" "), std::string::npos) << "side by side";
    EXPECT_EQ(QImage::fromData(
                  QByteArray::fromStdString(Picture({effects}, PictureSize{400, 300}).toPng()))
                  .width(),
              1200);
}

TEST(Picture, NothingButShapesAndTextIsInAnSvg)
{
    for (const PictureData& data : oneOfEachKind()) {
        const std::string svg = svgOf(data);
        EXPECT_EQ(svg.find("<image"), std::string::npos);
        EXPECT_EQ(svg.find(" id="), std::string::npos);
    }
}

TEST(Picture, AnInlineSvgIsOneElement)
{
    const std::string svg = Picture({sweep()}).toInlineSvg();

    EXPECT_EQ(svg.rfind("<svg style=\"max-width:100%;height:auto\" width=\"800\"", 0), 0u);
    EXPECT_TRUE(hasText(svg, "The title"));
}

TEST(Picture, APngHasTheSizeWantedAndIsWhiteOutside)
{
    const QImage image = QImage::fromData(
        QByteArray::fromStdString(Picture({contour()}, PictureSize{500, 400}).toPng()));

    EXPECT_EQ(image.size(), QSize(500, 400));
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(499, 399), QColor(Qt::white));
}

TEST(Picture, APngHasTheColoursOfTheValues)
{
    const QImage image = QImage::fromData(QByteArray::fromStdString(Picture({contour()}).toPng()));

    // x y is 0 along the left side and largest at the upper right.
    EXPECT_TRUE(hasPixel(image, QRect(70, 100, 100, 300), PlotColours::viridis(0.0)));
    EXPECT_FALSE(hasPixel(image, QRect(70, 100, 100, 300), PlotColours::viridis(1.0)));
    EXPECT_TRUE(hasPixel(image, QRect(600, 40, 75, 75), PlotColours::viridis(1.0)));
    EXPECT_FALSE(hasPixel(image, QRect(600, 40, 75, 75), PlotColours::viridis(0.0)));
}

TEST(Picture, APdfEmbedsItsFontAndIsOnePage)
{
    const std::string pdf = Picture({sweep()}, PictureSize{960, 480}).toPdf();

    EXPECT_EQ(pdf.rfind("%PDF-", 0), 0u);
    EXPECT_NE(pdf.find("/ToUnicode"), std::string::npos);
    EXPECT_NE(pdf.find("/MediaBox [0 0 720.000000 360.000000]"), std::string::npos);
}

TEST(Picture, ThePlacesOfThePdfsObjectsAreRight)
{
    const std::string pdf = Picture({sweep()}).toPdf();

    const std::size_t table =
        std::stoul(pdf.substr(pdf.rfind("startxref\n") + std::string("startxref\n").size()));
    ASSERT_EQ(pdf.substr(table, 5), "xref\n");
    std::size_t line = pdf.find('\n', table + 5) + 1;
    for (std::size_t object = 1; pdf[line + 20] != 't'; ++object) {
        line += 20;
        const std::size_t place = std::stoul(pdf.substr(line, 10));
        const std::string begin = std::to_string(object) + " 0 obj";
        EXPECT_EQ(pdf.substr(place, begin.size()), begin);
    }
}

TEST(Picture, TheSameDataGiveTheSameBytes)
{
    for (const PictureData& data : oneOfEachKind()) {
        const Picture first({data});
        const Picture second({data});
        EXPECT_EQ(first.toSvg(), second.toSvg());
        EXPECT_EQ(first.toPng(), second.toPng());
        EXPECT_EQ(first.toPdf(), second.toPdf());
    }
}

TEST(Picture, TheTimeZoneIsNotInAPdf)
{
    const Picture picture({sweep()});
    qputenv("TZ", "UTC");
    const std::string there = picture.toPdf();
    qputenv("TZ", "Asia/Kolkata");
    const std::string elsewhere = picture.toPdf();
    qunsetenv("TZ");

    EXPECT_EQ(there, elsewhere);
}

TEST(Picture, TheOrderOfFontsInAPdfIsAlwaysTheSame)
{
    // A letter of mathematics and a sign that few fonts have: where they are installed, the
    // document holds several.
    SweepPicture picture = sweep();
    picture.inputName = "y \360\235\222\263 \342\214\230 \352\234\261";
    std::vector<std::string> documents;
    for (int i = 0; i < 8; ++i) {
        qSetGlobalQHashSeed(-1);
        documents.push_back(Picture({picture}).toPdf());
    }

    EXPECT_EQ(documents, std::vector<std::string>(8, documents[0]));
}

TEST(Picture, TheEndingOfTheNameDecidesTheFormat)
{
    EXPECT_EQ(Picture::formatOf("a.b/picture.svg"), Picture::Svg);
    EXPECT_EQ(Picture::formatOf("picture.PNG"), Picture::Png);
    EXPECT_EQ(Picture::formatOf("picture.Pdf"), Picture::Pdf);
}

TEST(Picture, AnotherEndingIsRefused)
{
    for (const char* name : {"picture.jpeg", "picture", "svg", "picture.svg.", ""}) {
        EXPECT_THROW(Picture::formatOf(name), UsageError) << name;
    }
}

TEST(Picture, AFileIsWrittenWholeOrNotAtAll)
{
    const TemporaryFolder folder;
    const Picture picture({sweep()});

    picture.write(folder.path("picture.svg"));

    EXPECT_EQ(folder.read("picture.svg"), picture.toSvg());
    EXPECT_THROW(picture.write(folder.path("missing/picture.svg")), FileError);
    EXPECT_EQ(folder.fileCount(), 1u) << "nothing else is left behind";
}
