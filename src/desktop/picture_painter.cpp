// Strokes of a picture box.
#include "desktop/picture_painter.h"

#include <QLineF>
#include <QList>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "desktop/record_values.h"

namespace gainsmith {
namespace {

constexpr int Divisions = 10;
constexpr QRgb DivisionColour = 0xff263039;
constexpr QRgb CentreColour = 0xff43505c;
// A little more than a pixel keeps slanted antialiased strokes as bright as level ones.
constexpr double PenWidthPerPixel = 1.25;

std::optional<QLineF> Place(const PictureLine& line, const QRectF& area) {
  const auto x = [&](float value) {
    return area.left() + (double{value} - line.Scale.Left) / line.Scale.Width * area.width();
  };
  const auto y = [&](float value) {
    return area.top() + (double{value} - line.Scale.Top) / line.Scale.Height * area.height();
  };
  const QLineF segment(x(line.X1), y(line.Y1), x(line.X2), y(line.Y2));
  const bool finite = std::isfinite(segment.x1()) && std::isfinite(segment.y1()) &&
                      std::isfinite(segment.x2()) && std::isfinite(segment.y2());
  return finite ? std::optional(segment) : std::nullopt;
}

// The part of the segment inside `bounds`; nothing when it lies outside altogether.
std::optional<QLineF> Clip(const QLineF& segment, const QRectF& bounds) {
  const QPointF along = segment.p2() - segment.p1();
  double first = 0;
  double last = 1;
  const auto cut = [&](double direction, double distance) {
    if (direction == 0) return distance >= 0;
    const double at = distance / direction;
    if (direction < 0) first = std::max(first, at);
    if (direction > 0) last = std::min(last, at);
    return first <= last;
  };
  const bool visible = cut(-along.x(), segment.x1() - bounds.left()) &&
                       cut(along.x(), bounds.right() - segment.x1()) &&
                       cut(-along.y(), segment.y1() - bounds.top()) &&
                       cut(along.y(), bounds.bottom() - segment.y1());
  if (!visible) return std::nullopt;
  return QLineF(segment.p1() + first * along, segment.p1() + last * along);
}

bool SamePen(const PictureLine& a, const PictureLine& b) {
  return a.Color == b.Color && a.WidthPixels == b.WidthPixels && a.Dotted == b.Dotted;
}

QPen PenOf(const PictureLine& line) {
  QPen pen(FixedColour(line.Color).value_or(QColor(Qt::white)));
  pen.setWidthF(line.WidthPixels * PenWidthPerPixel);
  pen.setStyle(line.Dotted ? Qt::DotLine : Qt::SolidLine);
  // Closes the gap on the outside of a bend, where one line ends and the next begins.
  pen.setCapStyle(line.Dotted ? Qt::FlatCap : Qt::SquareCap);
  return pen;
}

// Lines of one pen that follow each other. Those that go straight on become one: where two of them
// met, their antialiased ends would show as beads.
class Stroke {
 public:
  void Add(const QLineF& line) {
    if (!lines_.isEmpty() && lines_.back().p2() == line.p1()) {
      joints_.push_back(line.p1());
      const QLineF whole(lines_.back().p1(), line.p2());
      if (std::all_of(joints_.begin(), joints_.end(),
                      [&](const QPointF& joint) { return LiesOn(whole, joint); })) {
        lines_.back() = whole;
        return;
      }
    }
    joints_.clear();
    lines_.push_back(line);
  }
  bool IsEmpty() const { return lines_.isEmpty(); }
  QList<QLineF> Take() {
    joints_.clear();
    return std::exchange(lines_, {});
  }

 private:
  static bool LiesOn(const QLineF& line, const QPointF& point) {
    constexpr double TolerancePixels = 0.05;
    const double length = line.length();
    const QPointF along = line.p2() - line.p1();
    const QPointF to = point - line.p1();
    const double across = std::abs(along.x() * to.y() - along.y() * to.x());
    const double ahead = QPointF::dotProduct(along, to);
    return across <= TolerancePixels * length && ahead >= 0 && ahead <= length * length;
  }

  QList<QLineF> lines_;
  // Points that the last line has gone through.
  QList<QPointF> joints_;
};

}  // namespace

void PaintGraticule(QPainter& painter, const QRectF& area, const QColor& ground) {
  painter.fillRect(area, ground);
  painter.setRenderHint(QPainter::Antialiasing, false);
  for (int i = 1; i < Divisions; ++i) {
    painter.setPen(QColor(i == Divisions / 2 ? CentreColour : DivisionColour));
    const double x = std::round(area.left() + area.width() * i / Divisions);
    const double y = std::round(area.top() + area.height() * i / Divisions);
    painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
  }
}

void PaintLines(QPainter& painter, const QRectF& area, const std::vector<PictureLine>& lines) {
  painter.save();
  painter.setClipRect(area);
  painter.setRenderHint(QPainter::Antialiasing);
  // Far outside points cost time and precision; strokes reach a little over the edge.
  const QRectF bounds = area.adjusted(-area.width(), -area.height(), area.width(), area.height());
  // Line by line, not as polylines: filling the outline of one that crosses itself takes a thousand
  // times longer.
  Stroke stroke;
  const PictureLine* pen = nullptr;
  const auto finish = [&] {
    if (stroke.IsEmpty()) return;
    painter.setPen(PenOf(*pen));
    painter.drawLines(stroke.Take());
  };
  for (const PictureLine& line : lines) {
    const auto placed = Place(line, area);
    const auto segment = placed ? Clip(*placed, bounds) : std::nullopt;
    if (!segment) continue;
    if (pen == nullptr || !SamePen(*pen, line)) {
      finish();
      pen = &line;
    }
    stroke.Add(*segment);
  }
  finish();
  painter.restore();
}

}  // namespace gainsmith
