// SVG pictures in the colours of the palette.
#include "desktop/icons.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPixmapCache>
#include <QSvgRenderer>

#include "host/qt_text.h"

namespace gainsmith {
namespace {

constexpr QSize WindowIconSize(64, 64);

QColor TextColour(QIcon::Mode mode = QIcon::Normal) {
  return QApplication::palette().color(
      mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active, QPalette::ButtonText);
}

// The drawing with its "currentColor" replaced.
QByteArray Drawing(const QString& path, const QColor& text) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  return file.readAll().replace("currentColor", text.name().toLatin1());
}

// The drawing with its colours turned into greys: what cannot be used has none.
QByteArray Greyed(QByteArray drawing) {
  constexpr qsizetype ColourLength = 7;
  for (auto at = drawing.indexOf('#'); at >= 0; at = drawing.indexOf('#', at + 1)) {
    const QColor colour(QString::fromLatin1(drawing.mid(at, ColourLength)));
    if (!colour.isValid()) continue;
    const int grey = qGray(colour.rgb());
    drawing.replace(at, ColourLength, QColor(grey, grey, grey).name().toLatin1());
  }
  return drawing;
}

class SvgIconEngine final : public QIconEngine {
 public:
  explicit SvgIconEngine(QString path) : path_(std::move(path)) {}

  void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State) override {
    const QByteArray drawing = Drawing(path_, TextColour(mode));
    QSvgRenderer renderer(mode == QIcon::Disabled ? Greyed(drawing) : drawing);
    renderer.render(painter, place);
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    const QString key = QStringLiteral("%1 %2x%3 %4 %5")
                            .arg(path_)
                            .arg(size.width())
                            .arg(size.height())
                            .arg(mode)
                            .arg(TextColour(mode).name());
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) return pixmap;
    pixmap = QPixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    painter.end();
    QPixmapCache::insert(key, pixmap);
    return pixmap;
  }
  // Window systems ask for all sizes of a window's icon while the window opens: one is enough for
  // them to scale.
  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override { return {WindowIconSize}; }
  [[nodiscard]] QIconEngine* clone() const override { return new SvgIconEngine(path_); }

 private:
  QString path_;
};

}  // namespace

QIcon ProgramIcon(const std::string& name) {
  return QIcon(new SvgIconEngine(QStringLiteral(":/icons/%1.svg").arg(ToQt(name))));
}

void PaintProgramPicture(QPainter& painter, const QRectF& place, const std::string& name,
                         const QColor& text) {
  QSvgRenderer renderer(Drawing(QStringLiteral(":/icons/%1.svg").arg(ToQt(name)), text));
  if (!renderer.isValid()) return;
  const QSizeF size = QSizeF(renderer.defaultSize()).scaled(place.size(), Qt::KeepAspectRatio);
  QRectF target(QPointF(0, 0), size);
  target.moveCenter(place.center());
  renderer.render(&painter, target);
}

}  // namespace gainsmith
