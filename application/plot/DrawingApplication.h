#pragma once

#include <surrogate_plot/Export.h>

#include <memory>

class QApplication;

/**
 * What drawing needs of the toolkit, without a display: unless the user has set QT_QPA_PLATFORM,
 * nothing is asked of a screen. Does nothing where there is a QApplication already. The C library
 * keeps its number format: a decimal comma of the user's language stays out of it.
 *
 * Made on the main thread, when a picture is wanted and not before: starting it takes time.
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
