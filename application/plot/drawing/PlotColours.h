#pragma once

#include <QColor>

/*
 * Colours that can be distinguished with any colour vision.
 *
 * Lines and symbols: Okabe, Ito: Color Universal Design, 2008 (jfly.uni-koeln.de/color).
 */
namespace PlotColours {
const QColor model(0x00, 0x72, 0xB2); ///< blue
/** A fifth of that blue on white, opaque: not all formats have transparency. */
const QColor band(0xCC, 0xE3, 0xF0);
const QColor cases(0xD5, 0x5E, 0x00);     ///< vermillion
const QColor reference(0x00, 0x00, 0x00); ///< diagonal and zero line
const QColor limits(0x90, 0x90, 0x90);    ///< of standard deviations
const QColor insignificant(0xA0, 0xA0, 0xA0);
const QColor outside(0xE6, 0xE6, 0xE6, 0xB4); ///< a veil through which contours can be seen
const QColor text(0x20, 0x20, 0x20);
const QColor grid(0xE4, 0xE4, 0xE4);

/**
 * The colour map viridis, from dark blue at 0 to yellow at 1, interpolated between ten of its
 * colours: lightness rises evenly, so that it can be read in grey too. Smith, van der Walt:
 * A Better Default Colormap for Matplotlib, SciPy 2015 (public domain, CC0).
 */
QColor viridis(double fraction);

/** Black or white, whichever has more contrast to this colour. */
QColor readableOn(const QColor& background);
} // namespace PlotColours
