#pragma once

#include <QFont>

namespace pulsara {

// The one typeface the program draws its texts in (Liberation Sans, metric-compatible with
// Arial), at a size in pixels so that texts fit the skin's cells whatever the screen's dots per
// inch.
inline QFont uiFont(int pixels, QFont::Weight weight = QFont::Normal)
{
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

} // namespace pulsara
