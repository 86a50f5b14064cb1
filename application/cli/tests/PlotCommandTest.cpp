// The command plot as users meet it.

#include "../../session/tests/CountOf.h"
#include "ProgramFixture.h"

#include <gtest/gtest.h>

#include <string>

namespace {
const std::string sweep = "plot cvd.csv -x Pressure,H2/WF6 -y Uniformity --count Pressure=20 ";
const std::string contour =
    "plot cvd.csv -x Pressure,H2/WF6 -y Uniformity --count Pressure=9 --count H2/WF6=9 ";

class PlotCommand : public Program
{};
} // namespace

TEST_F(PlotCommand, PlotWritesAPictureAndNothingElse)
{
    for (const std::string name : {"picture.svg", "picture.png", "picture.pdf"}) {
        const Outcome plot = run(sweep + "--at H2/WF6=6 --kind sweep -q -o " + name);

        EXPECT_EQ(plot.exitCode, 0) << plot.err;
        EXPECT_EQ(plot.out, "");
        EXPECT_EQ(plot.err, "");
        EXPECT_GT(folder.read(name).size(), 5000u);
    }
    EXPECT_TRUE(contains(folder.read("picture.svg"), ">Pressure</text>"));
}

TEST_F(PlotCommand, PlotNeedsNoDisplay)
{
    EXPECT_EQ(run(contour + "--kind contour -o with.svg").exitCode, 0);
    // env would hand the arguments of the fixture's command to itself.
    const Outcome bare =
        run("--version > /dev/null; env -u QT_QPA_PLATFORM -u DISPLAY -u WAYLAND_DISPLAY "
            "-u XDG_RUNTIME_DIR '" SURROGATE_PROGRAM "' " +
            contour + "--kind contour -q -o without.svg");

    EXPECT_EQ(bare.exitCode, 0) << bare.err;
    EXPECT_EQ(bare.err, "");
    EXPECT_EQ(folder.read("without.svg"), folder.read("with.svg"));
}

TEST_F(PlotCommand, PlotSaysWhenThePlatformCannotDraw)
{
    const Outcome plot =
        run("--version > /dev/null; QT_QPA_PLATFORM=nowhere '" SURROGATE_PROGRAM "' " + contour +
            "--kind contour -o picture.svg");

    EXPECT_EQ(plot.exitCode, 5);
    EXPECT_EQ(plot.err, "surrogate: Pictures cannot be drawn on the platform \"nowhere\"; leave "
                        "QT_QPA_PLATFORM unset or set it to offscreen.\n");
}

TEST_F(PlotCommand, PlotSaysWhenThereIsNoFont)
{
    const std::string fonts =
        folder.write("fonts.conf", "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM "
                                   "\"fonts.dtd\"><fontconfig></fontconfig>");
    const Outcome plot =
        run("--version > /dev/null; FONTCONFIG_FILE='" + fonts + "' '" SURROGATE_PROGRAM "' " +
            contour + "--kind contour -o picture.svg");

    EXPECT_EQ(plot.exitCode, 5);
    EXPECT_EQ(plot.err, "surrogate: No font is installed, and pictures need one for their texts: "
                        "install a font package such as fonts-dejavu-core.\n");
    EXPECT_EQ(folder.read("picture.svg"), "");
}

TEST_F(PlotCommand, PlotRefusesWhatItCannotDo)
{
    expectFailure(sweep + "--kind sweep", 2,
                  "The command plot needs a file for the picture: -o FILE.svg, FILE.png or "
                  "FILE.pdf.");
    expectFailure(sweep + "--kind sweep -o picture.gif", 2,
                  "The name of a picture ends with .svg, .png or .pdf, which \"picture.gif\" does "
                  "not.");
    expectFailure(sweep + "--at H2/WF6=6 --kind contour -o picture.svg", 2,
                  "A picture of kind contour needs two swept inputs and one is. Name each with "
                  "--sweep NAME, --sweep NAME=TEXT or --count NAME=N, and hold others with --at "
                  "NAME=VALUE.");
    expectFailure(sweep + "--kind actual -o picture.svg", 2,
                  "--sweep, --count and --at belong to pictures of kind sweep and contour.");
    expectFailure("plot cvd.csv -q -y Stress -m kriging --kind coefficients -o picture.svg", 2,
                  "Only response surfaces have coefficients to draw. Choose -m "
                  "response-surface.");
    expectFailure(sweep + "--kind sweep -o nowhere/picture.svg", 5,
                  "The file \"nowhere/picture.svg\" cannot be written: No such file or directory.");
}

TEST_F(PlotCommand, PlotNeedsNoNumbersOfValuesWhereItIsClearWhatIsSwept)
{
    const std::string plot = "plot cvd.csv -x Pressure,H2/WF6 -y Uniformity -o picture.svg -q ";
    const auto named = [&] { return folder.read("picture.svg"); };

    EXPECT_EQ(run(plot + "--kind contour").exitCode, 0);
    EXPECT_TRUE(contains(named(), ">H2/WF6</text>"));
    EXPECT_EQ(run(plot + "--kind sweep --at Pressure=42").exitCode, 0);
    EXPECT_TRUE(contains(named(), "At Pressure = 42."));
    EXPECT_EQ(run(plot + "--kind sweep --sweep Pressure").exitCode, 0);
    EXPECT_TRUE(contains(named(), "At H2/WF6 = 6. "));
    expectFailure(plot + "--kind contour --at Pressure", 2,
                  "--at needs NAME=VALUE, not \"Pressure\".");
}

TEST_F(PlotCommand, PlotWithoutSweptInputsDrawsTheEffectsOfAll)
{
    const Outcome plot = run("plot cvd.csv -x Pressure,H2/WF6 -y Uniformity,Stress -o picture.svg");

    ASSERT_EQ(plot.exitCode, 0) << plot.err;
    const std::string svg = folder.read("picture.svg");
    EXPECT_TRUE(contains(svg, ">Uniformity, main effects, response surface</text>"));
    EXPECT_TRUE(contains(svg, ">Stress, main effects, response surface</text>"));
    EXPECT_EQ(countOf(svg, ">Pressure</text>"), 2u);
}

TEST_F(PlotCommand, PlotWithoutAKindDrawsWhatTheSweptInputsAreFor)
{
    ASSERT_EQ(run(contour + "-o picture.svg").exitCode, 0);
    EXPECT_TRUE(contains(folder.read("picture.svg"), ">Uniformity over Pressure and H2/WF6, "));
    ASSERT_EQ(run(sweep + "-o picture.svg").exitCode, 0);
    EXPECT_TRUE(contains(folder.read("picture.svg"), ">Uniformity over Pressure, "));
}

TEST_F(PlotCommand, PlotKeepsTheOldPictureWhenItFails)
{
    folder.write("picture.svg", "the old one");

    EXPECT_EQ(run(sweep + "--at H2/WF6=6 --kind contour -o picture.svg").exitCode, 2);
    EXPECT_EQ(folder.read("picture.svg"), "the old one");
}

TEST_F(PlotCommand, PlotDrawsWhatAProjectSweeps)
{
    ASSERT_EQ(
        run("evaluate " + contour.substr(5) + "--save cvd.surrogate.xml -o table.csv").exitCode, 0);

    EXPECT_EQ(run("plot cvd.surrogate.xml --kind contour -o picture.svg").exitCode, 0);
    EXPECT_EQ(run("plot cvd.surrogate.xml --kind sweep --at H2/WF6=6 -o picture.svg").exitCode, 0);
}
