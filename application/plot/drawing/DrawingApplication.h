#pragma once

#include <surrogate_plot/Export.h>

#include <memory>

class QApplication;

/**
 * The QApplication that drawing needs, unless there is one already. Without a display: the platform
 * is "offscreen" unless the user has set QT_QPA_PLATFORM. The C library keeps its number format,
 * whatever decimal comma the user's language has.
 *
 * To be made on the main thread, and only when a picture is drawn: starting it takes time.
 */
class SURROGATE_PLOT_EXPORT DrawingApplication
{
public:
    /** @throw FileError if the machine has no font: pictures would be without text. */
    DrawingApplication();
    ~DrawingApplication();

    DrawingApplication(const DrawingApplication&) = delete;
    DrawingApplication& operator=(const DrawingApplication&) = delete;

private:
    std::unique_ptr<QApplication> application;
};
