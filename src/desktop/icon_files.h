// How the files of the drawn icons are named and laid out.
#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include "desktop/scheme_colours.h"

namespace gainsmith {

struct IconFile {
  QString Name;
  gainsmith::Scheme Scheme;
  // In the greys of what cannot be used.
  bool Grey;

  // A QPicture as large as the drawing's sheet: sharp at any size.
  [[nodiscard]] QString Recording() const {
    return QStringLiteral("%1/%2/%3")
        .arg(Scheme == Scheme::Dark ? "dark" : "light", Grey ? "grey" : "plain", Name);
  }
  // The pixels of an image, row by row. There for the size of the drawing and twice that, as the
  // tool bar shows them: the start would wait 0.7 ms for recordings to be replayed.
  [[nodiscard]] QString Pixels(const QSize& size) const {
    return QStringLiteral("%1.%2x%3").arg(Recording()).arg(size.width()).arg(size.height());
  }
  static constexpr QImage::Format PixelFormat = QImage::Format_ARGB32_Premultiplied;
};

}  // namespace gainsmith
