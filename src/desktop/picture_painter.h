// Painting the lines of a picture box at any size.
#pragma once

#include <QColor>
#include <QRectF>
#include <vector>

#include "platform/control.h"

class QPainter;

namespace gainsmith {

// The ground, which is dark, and its ten by ten divisions.
void PaintGraticule(QPainter& painter, const QRectF& area, const QColor& ground);

// The lines, each in its own user scale, antialiased, clipped to the area. Lines with a coordinate
// that is not a number are left out.
void PaintLines(QPainter& painter, const QRectF& area, const std::vector<PictureLine>& lines);

}  // namespace gainsmith
