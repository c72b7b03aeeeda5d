// The one look of all windows: style, font, light and dark palettes, and colours and shown texts of
// records as Qt knows them.
#pragma once

#include <QColor>
#include <QPalette>
#include <QString>
#include <optional>
#include <string>

#include "platform/control.h"

class QApplication;
class QFont;

namespace gainsmith {

enum class Scheme { Light, Dark };

// Fusion style, the program's font and icon, and the palette for the desktop's own scheme. Called
// once, before the first window.
void ApplyLook(QApplication& application);
// Changes the palette of all windows, those on show included.
void ApplyScheme(Scheme scheme);
// Scheme of the palette in force.
Scheme PresentScheme();

// Whole device-independent pixels for a place or length in twips, rounded to the nearest.
int PixelsFromTwips(int twips);
int TwipsFromPixels(int pixels);

// The colour, or nothing for one of the desktop's own scheme.
std::optional<QColor> FixedColour(Colour colour);
Colour ColourOf(const QColor& colour);

// `wanted` made lighter or darker, its hue kept, until text in it can be read on `background`.
QColor Readable(const QColor& wanted, const QColor& background);
// Black or white, whichever reads better on `background`.
QColor TextOn(const QColor& background);

// The text as a widget shows it: full-width forms that no installed font can draw become their
// plain counterparts.
QString ShownText(const std::string& text);

}  // namespace gainsmith
