// Places, colours and texts of records as widgets show them.
#pragma once

#include <QColor>
#include <QString>
#include <optional>
#include <string>

#include "platform/control.h"
#include "platform/window.h"

namespace gainsmith {

// Whole device-independent pixels for a place or length in twips, rounded to the nearest.
int PixelsFromTwips(int twips);
int TwipsFromPixels(int pixels);

// The colour, or nothing for one of the desktop's own scheme.
std::optional<QColor> FixedColour(Colour colour);
Colour ColourOf(const QColor& colour);

Qt::CursorShape CursorOf(MousePointer pointer);

// The text as a widget shows it: full-width forms that no installed font can draw become their
// plain counterparts.
QString ShownText(const std::string& text);

}  // namespace gainsmith
