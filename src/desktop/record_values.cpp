// Twips, colours and full-width forms.
#include "desktop/record_values.h"

#include <QApplication>
#include <QFont>
#include <QGlyphRun>
#include <QTextLayout>
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "host/qt_text.h"

namespace gainsmith {
namespace {

constexpr int TwipsPerPixel = 15;

bool CanDraw(QChar letter, const QFont& font) {
  QTextLayout layout(QString(letter), font);
  layout.beginLayout();
  layout.createLine();
  layout.endLayout();
  for (const QGlyphRun& run : layout.glyphRuns()) {
    const auto glyphs = run.glyphIndexes();
    if (std::find(glyphs.begin(), glyphs.end(), 0U) != glyphs.end()) return false;
  }
  return true;
}

}  // namespace

int PixelsFromTwips(int twips) {
  return static_cast<int>(std::floor((twips + TwipsPerPixel / 2.0) / TwipsPerPixel));
}

int TwipsFromPixels(int pixels) { return pixels * TwipsPerPixel; }

std::optional<QColor> FixedColour(Colour colour) {
  if ((colour & SystemColour(0)) != 0) return std::nullopt;
  return QColor(static_cast<int>(colour & 0xFFU), static_cast<int>(colour >> 8U & 0xFFU),
                static_cast<int>(colour >> 16U & 0xFFU));
}

Colour ColourOf(const QColor& colour) {
  return Rgb(static_cast<std::uint32_t>(colour.red()), static_cast<std::uint32_t>(colour.green()),
             static_cast<std::uint32_t>(colour.blue()));
}

Qt::CursorShape CursorOf(MousePointer pointer) {
  switch (pointer) {
    case MousePointer::Hourglass:
      return Qt::WaitCursor;
    case MousePointer::ArrowQuestion:
      return Qt::WhatsThisCursor;
    case MousePointer::Default:
      break;
  }
  return Qt::ArrowCursor;
}

QString ShownText(const std::string& text) {
  QString shown = ToQt(text);
  for (QChar& letter : shown) {
    constexpr char16_t FirstFullWidth = 0xFF01;
    constexpr char16_t LastFullWidth = 0xFF5E;
    constexpr char16_t Distance = 0xFEE0;
    const char16_t code = letter.unicode();
    if (code < FirstFullWidth || code > LastFullWidth) continue;
    if (!CanDraw(letter, QApplication::font())) letter = QChar(char16_t(code - Distance));
  }
  return shown;
}

}  // namespace gainsmith
