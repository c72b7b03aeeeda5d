// Draws the icons once, while the tool is built, so that the tool needs neither their text nor the
// library that reads it.
//
//     record_icons DIRECTORY DRAWING.svg...
//
// writes what Qt paints for each drawing, in the colours of each scheme and greyed, and icons.qrc,
// which names all files.
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPicture>
#include <QSvgRenderer>
#include <cstdio>
#include <cstdlib>

#include "desktop/icon_files.h"
#include "desktop/scheme_colours.h"

namespace gainsmith {
namespace {

// Larger drawings are no icons.
constexpr int LargestIcon = 64;

QByteArray InColour(QByteArray drawing, QRgb text) {
  return drawing.replace("currentColor", QColor(text).name().toLatin1());
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

[[noreturn]] void Fail(const QString& path) {
  std::fprintf(stderr, "%s: cannot be read, drawn or written\n", qPrintable(path));
  std::exit(1);
}

class Recorder {
 public:
  explicit Recorder(const QString& directory) : directory_(directory) {}

  void RecordAll(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) Fail(path);
    const QByteArray drawing = file.readAll();
    const QString name = QFileInfo(path).completeBaseName();
    for (const Scheme scheme : {Scheme::Light, Scheme::Dark}) {
      const SchemeColours colours = ColoursOf(scheme);
      Record({name, scheme, false}, InColour(drawing, colours.WindowText));
      Record({name, scheme, true}, Greyed(InColour(drawing, colours.Disabled)));
    }
  }

  void WriteList() {
    Write(QStringLiteral("icons.qrc"),
          "<RCC><qresource prefix=\"/icons\">" + list_ + "</qresource></RCC>\n");
  }

 private:
  void Record(const IconFile& icon, const QByteArray& drawing) {
    QSvgRenderer renderer(drawing);
    if (!renderer.isValid()) Fail(icon.Name);
    const QRect sheet(QPoint(0, 0), renderer.defaultSize());
    QPicture picture;
    QPainter painter(&picture);
    // A recording is as large as what is painted: a drawing keeps its margins.
    painter.fillRect(sheet, Qt::transparent);
    renderer.render(&painter, sheet);
    painter.end();
    if (picture.boundingRect() != sheet) Fail(icon.Name + QStringLiteral(" outside its sheet"));
    Add(icon.Recording(), {picture.data(), static_cast<qsizetype>(picture.size())});
    if (sheet.width() > LargestIcon) return;
    for (const int scale : {1, 2}) {
      QImage image(scale * sheet.size(), IconFile::PixelFormat);
      image.fill(Qt::transparent);
      QPainter onto(&image);
      renderer.render(&onto);
      onto.end();
      Add(icon.Pixels(image.size()),
          {reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()});
    }
  }

  void Add(const QString& file, const QByteArray& bytes) {
    Write(file, bytes);
    list_ += "<file>" + file.toUtf8() + "</file>\n";
  }

  void Write(const QString& name, const QByteArray& bytes) const {
    const QString path = directory_.filePath(name);
    QFile file(path);
    if (!QFileInfo(path).dir().mkpath(QStringLiteral(".")) || !file.open(QIODevice::WriteOnly) ||
        file.write(bytes) != bytes.size() || !file.flush()) {
      Fail(path);
    }
  }

  QDir directory_;
  QByteArray list_;
};

}  // namespace
}  // namespace gainsmith

int main(int argumentCount, char** arguments) {
  const QCoreApplication application(argumentCount, arguments);
  const QStringList paths = QCoreApplication::arguments();
  gainsmith::Recorder recorder(paths.at(1));
  for (const QString& path : paths.sliced(2)) recorder.RecordAll(path);
  recorder.WriteList();
}
