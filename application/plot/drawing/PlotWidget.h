#pragma once

#include <plot/data/PictureData.h>

#include <surrogate_plot/Export.h>

#include <QSize>
#include <qwt_plot.h>

#include <memory>

/**
 * One panel of a picture as a widget; files show the same widget, drawn by Picture. Needs a
 * QApplication. Ticks, names and labels are chosen for its size.
 */
class SURROGATE_PLOT_EXPORT PlotWidget : public QwtPlot
{
public:
    explicit PlotWidget(PanelData data, QWidget* parent = nullptr);
    ~PlotWidget() override;

    /** At which there is room for all terms. */
    static int heightOf(const CoefficientPicture& picture);

    /** Lays everything out for this size, even if the widget is never shown. */
    void arrange(const QSize& size);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
