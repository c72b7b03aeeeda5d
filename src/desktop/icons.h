// The program's own pictures.
#pragma once

#include <QIcon>
#include <string>

class QPainter;
class QRectF;

namespace gainsmith {

// Toolbar icon `name`, drawn at any size and in the colours of the palette in force.
QIcon ProgramIcon(const std::string& name);

// Draws picture `name` into the rectangle, as large as fits with its proportions kept.
void PaintProgramPicture(QPainter& painter, const QRectF& place, const std::string& name);

}  // namespace gainsmith
