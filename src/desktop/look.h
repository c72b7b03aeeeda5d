// The one look of all windows: style, font, light and dark palettes.
#pragma once

#include <QColor>

#include "desktop/scheme_colours.h"

class QApplication;

namespace gainsmith {

// Fusion style, the program's font and icon, the palette for the desktop's own scheme, and a screen
// that keeps quiet. Called once, before the first window.
void ApplyLook(QApplication& application);
// Changes the palette of all windows, those on show included.
void ApplyScheme(Scheme scheme);
// Scheme of the palette in force.
Scheme PresentScheme();

// `wanted` made lighter or darker, its hue kept, until text in it can be read on `background`.
QColor Readable(const QColor& wanted, const QColor& background);
// Black or white, whichever reads better on `background`.
QColor TextOn(const QColor& background);

}  // namespace gainsmith
