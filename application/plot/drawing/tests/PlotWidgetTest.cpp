#include <plot/drawing/PlotWidget.h>

#include "plot/drawing/PlotColours.h"

#include <QApplication>
#include <QImage>
#include <QPixmap>
#include <gtest/gtest.h>
#include <qwt_scale_div.h>

namespace {
SweepPicture sweep()
{
    SweepPicture picture;
    picture.inputName = "Pressure";
    picture.outputName = "Stress";
    picture.inputs = {100000.0, 150000.0, 200000.0};
    picture.model = {1.0, 3.0, 2.0};
    picture.lower = {0.5, 2.5, 1.5};
    picture.upper = {1.5, 3.5, 2.5};
    picture.caseInputs = {150000.0};
    picture.caseOutputs = {0.7};
    picture.modelLabel = "model";
    picture.bandLabel = "band";
    picture.caseLabel = "cases";
    return picture;
}

int ticksBelow(const PlotWidget& widget)
{
    return widget.axisScaleDiv(QwtPlot::xBottom).ticks(QwtScaleDiv::MajorTick).size();
}
} // namespace

TEST(PlotWidget, ShowsTheSameOnAScreen)
{
    PlotWidget widget(sweep());
    widget.resize(600, 400);
    widget.show();
    QApplication::processEvents();

    const QImage image = widget.grab().toImage();

    for (const QColor& colour : {PlotColours::model, PlotColours::band, PlotColours::cases}) {
        bool isThere = false;
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y) {
                isThere = isThere || image.pixelColor(x, y) == colour;
            }
        }
        EXPECT_TRUE(isThere) << colour.name().toStdString();
    }
}

TEST(PlotWidget, HasFewerLabelsWhereThereIsLessRoom)
{
    PlotWidget widget(sweep());
    widget.show();

    widget.resize(1200, 600);
    QApplication::processEvents();
    const int wide = ticksBelow(widget);
    widget.resize(300, 300);
    QApplication::processEvents();

    EXPECT_GT(wide, ticksBelow(widget));
    EXPECT_GE(ticksBelow(widget), 2);
}

TEST(PlotWidget, IsArrangedWithoutBeingShown)
{
    PlotWidget widget(sweep());

    widget.arrange(QSize(1200, 600));
    const int wide = ticksBelow(widget);
    widget.arrange(QSize(300, 300));

    EXPECT_GT(wide, ticksBelow(widget));
}
