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

// The texts of the axes, under the lines.
void PaintAxisTexts(QPainter& painter, const QRectF& area, const std::vector<PictureText>& texts);

// The names of the traces, over the lines, in colours that can be read on `ground`; none covers
// another.
void PaintNames(QPainter& painter, const QRectF& area, const std::vector<PictureText>& texts,
                const QColor& ground);

}  // namespace gainsmith
