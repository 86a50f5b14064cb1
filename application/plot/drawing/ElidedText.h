#pragma once

#include <qwt_text.h>

class QFont;

/**
 * A text of one line, shortened in the middle with an ellipsis if it is wider than the room in
 * which it is drawn. Markup is not interpreted.
 */
QwtText elidedText(const QString& text, const QFont& font);
