// Strokes of a picture box.
#include "desktop/picture_painter.h"

#include <QLineF>
#include <QList>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "desktop/look.h"
#include "desktop/record_values.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

constexpr int Divisions = 10;
constexpr QRgb DivisionColour = 0xff263039;
constexpr QRgb CentreColour = 0xff43505c;
// A little more than a pixel keeps slanted antialiased strokes as bright as level ones.
constexpr double PenWidthPerPixel = 1.25;
constexpr double ThinnestPen = 1.5;
constexpr double TextMarginPixels = 4;
constexpr float NameGroundOpacity = 0.7F;

QPointF Place(float x, float y, const PictureScale& scale, const QRectF& area) {
  return {area.left() + (double{x} - scale.Left) / scale.Width * area.width(),
          area.top() + (double{y} - scale.Top) / scale.Height * area.height()};
}

std::optional<QLineF> Place(const PictureLine& line, const QRectF& area) {
  const QLineF segment(Place(line.X1, line.Y1, line.Scale, area),
                       Place(line.X2, line.Y2, line.Scale, area));
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
  pen.setWidthF(std::max(line.WidthPixels * PenWidthPerPixel, ThinnestPen));
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
  [[nodiscard]] bool IsEmpty() const { return lines_.isEmpty(); }
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

void PaintAxisTexts(QPainter& painter, const QRectF& area, const std::vector<PictureText>& texts) {
  const QFontMetricsF metrics(painter.font());
  for (const PictureText& text : texts) {
    if (text.At == PictureText::Place::TraceEnd) continue;
    const QString shown = ToQt(text.Text);
    const QPointF point = Place(text.X, text.Y, text.Scale, area);
    QRectF place(QPointF(), QSizeF(metrics.horizontalAdvance(shown), metrics.height()));
    place.moveCenter(point);
    if (text.At == PictureText::Place::RightEdge) {
      // On its line, not across it.
      place.moveBottomRight({area.right() - TextMarginPixels, point.y()});
    }
    if (text.At == PictureText::Place::LowerEdge) place.moveBottom(area.bottom());
    painter.setPen(FixedColour(text.Color).value_or(QColor(Qt::white)));
    painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, shown);
  }
}

void PaintNames(QPainter& painter, const QRectF& area, const std::vector<PictureText>& texts,
                const QColor& ground) {
  const QFontMetricsF metrics(painter.font());
  QColor veil = ground;
  veil.setAlphaF(NameGroundOpacity);
  double right = area.right() - TextMarginPixels;
  for (const PictureText& text : texts) {
    if (text.At != PictureText::Place::RightEdge) continue;
    const double width = metrics.horizontalAdvance(ToQt(text.Text));
    right = std::min(right, area.right() - width - 3 * TextMarginPixels);
  }
  // From above, so that they stand in the order of their traces.
  std::vector<std::pair<double, const PictureText*>> names;
  for (const PictureText& text : texts) {
    if (text.At != PictureText::Place::TraceEnd) continue;
    const double y = Place(text.X, text.Y, text.Scale, area).y();
    names.emplace_back(std::isfinite(y) ? y : area.top(), &text);
  }
  std::stable_sort(names.begin(), names.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<QRectF> taken;
  for (const auto& [y, text] : names) {
    const QString shown = ToQt(text->Text);
    QRectF place(QPointF(), QSizeF(metrics.horizontalAdvance(shown), metrics.height()));
    place.moveRight(right);
    // Above the trace, or as far from there as the names before it and the edges ask for.
    const double highest = area.top();
    const double lowest = area.bottom() - place.height();
    place.moveTop(std::clamp(y - place.height() - 1, highest, lowest));
    const auto free = [&] {
      return std::none_of(taken.begin(), taken.end(),
                          [&](const QRectF& other) { return other.intersects(place); });
    };
    while (!free() && place.top() < lowest) place.moveTop(std::min(place.top() + 1, lowest));
    while (!free() && place.top() > highest) place.moveTop(std::max(place.top() - 1, highest));
    taken.push_back(place);
    painter.fillRect(place, veil);
    painter.setPen(Readable(FixedColour(text->Color).value_or(QColor(Qt::white)), ground));
    painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, shown);
  }
}

}  // namespace gainsmith
