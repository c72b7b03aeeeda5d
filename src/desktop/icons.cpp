// Drawings made while the tool was built.
#include "desktop/icons.h"

#include <QIconEngine>
#include <QPainter>
#include <QPicture>
#include <QPixmap>
#include <QPixmapCache>
#include <QResource>

#include "desktop/icon_files.h"
#include "desktop/look.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

constexpr QSize WindowIconSize(64, 64);

IconFile FileOf(const QString& name, QIcon::Mode mode = QIcon::Normal) {
  return {name, PresentScheme(), mode == QIcon::Disabled};
}

QByteArray Bytes(const QString& file) {
  return QResource(QStringLiteral(":/icons/") + file).uncompressedData();
}

QPicture Recording(const IconFile& icon) {
  const QByteArray bytes = Bytes(icon.Recording());
  QPicture picture;
  picture.setData(bytes.constData(), static_cast<uint>(bytes.size()));
  return picture;
}

void Replay(QPainter& painter, QPicture recording, const QRectF& place) {
  const QRectF sheet = recording.boundingRect();
  if (sheet.isEmpty()) return;
  // A recording is as many inches wide on every device: here it is so many pixels.
  const QPaintDevice& device = *painter.device();
  const double acrossPixels = double(recording.logicalDpiX()) / device.logicalDpiX();
  const double downPixels = double(recording.logicalDpiY()) / device.logicalDpiY();
  painter.save();
  painter.translate(place.topLeft());
  painter.scale(acrossPixels * place.width() / sheet.width(),
                downPixels * place.height() / sheet.height());
  recording.play(&painter);
  painter.restore();
}

QPixmap Drawn(const IconFile& icon, const QSize& size) {
  const QByteArray pixels = Bytes(icon.Pixels(size));
  if (!pixels.isEmpty()) {
    const QImage image(reinterpret_cast<const uchar*>(pixels.constData()), size.width(),
                       size.height(), IconFile::PixelFormat);
    return QPixmap::fromImage(image.copy());
  }
  QPixmap pixmap(size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  Replay(painter, Recording(icon), QRectF(QPointF(0, 0), size));
  return pixmap;
}

class IconEngine final : public QIconEngine {
 public:
  explicit IconEngine(QString name) : name_(std::move(name)) {}

  void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State) override {
    Replay(*painter, Recording(FileOf(name_, mode)), place);
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
    const IconFile icon = FileOf(name_, mode);
    const QString key = icon.Pixels(size);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
      pixmap = Drawn(icon, size);
      QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
  }
  // Window systems ask for all sizes of a window's icon while the window opens: one is enough for
  // them to scale.
  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override { return {WindowIconSize}; }
  [[nodiscard]] QIconEngine* clone() const override { return new IconEngine(name_); }

 private:
  QString name_;
};

}  // namespace

QIcon ProgramIcon(const std::string& name) { return QIcon(new IconEngine(ToQt(name))); }

void PaintProgramPicture(QPainter& painter, const QRectF& place, const std::string& name) {
  const QPicture recording = Recording(FileOf(ToQt(name)));
  const QSizeF size =
      recording.boundingRect().size().toSizeF().scaled(place.size(), Qt::KeepAspectRatio);
  QRectF target(QPointF(0, 0), size);
  target.moveCenter(place.center());
  Replay(painter, recording, target);
}

}  // namespace gainsmith
