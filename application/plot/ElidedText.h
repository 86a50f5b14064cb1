#pragma once

#include <qwt_text.h>

class QFont;

/**
 * A text of one line that is cut in its middle, with an ellipsis, where it is wider than the room
 * it gets when it is drawn. Its characters stand for themselves, also those of markup.
 */
QwtText elidedText(const QString& text, const QFont& font);
