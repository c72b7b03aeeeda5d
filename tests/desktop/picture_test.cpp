// Picture boxes: lines in their own scales, mouse in the picture's.
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QPainter>
#include <limits>

#include "desk.h"
#include "desktop/picture_painter.h"
#include "desktop/record_values.h"

namespace gainsmith::test {
namespace {

constexpr Colour Red = Rgb(255, 0, 0);
constexpr Colour Ground = Rgb(8, 16, 48);

PictureLine LineIn(const PictureScale& scale, float x1, float y1, float x2, float y2) {
  return {x1, y1, x2, y2, Red, 1, false, scale};
}

QImage Painted(const std::vector<PictureLine>& lines, int scale = 1) {
  QImage image(QSize(200, 100) * scale, QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::black);
  QPainter painter(&image);
  PaintLines(painter, QRectF(0, 0, 200, 100), lines);
  return image;
}

TEST(PicturePainter, EachLineStaysInTheScaleItWasDrawnIn) {
  const PictureScale plot{0, 400, 200, -800};
  const PictureScale unit{0, 0, 1, 1};
  for (const int scale : {1, 2}) {
    const QImage image =
        Painted({LineIn(plot, 0, 200, 200, 200), LineIn(unit, 0, 0.75F, 1, 0.75F)}, scale);
    EXPECT_GT(qRed(image.pixel(100 * scale, 25 * scale)), 100);
    EXPECT_GT(qRed(image.pixel(100 * scale, 75 * scale)), 100);
    EXPECT_EQ(qRed(image.pixel(100 * scale, 50 * scale)), 0);
  }
}

TEST(PicturePainter, FarAndUnreadablePointsDoNoHarm) {
  const PictureScale unit{0, 0, 1, 1};
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  const QImage image = Painted({LineIn(unit, 0.5F, -1e6F, 0.5F, 1e6F), LineIn(unit, nan, 0, 1, 1),
                                LineIn(unit, 0, 0, infinity, 1), LineIn({0, 0, 0, 0}, 0, 0, 1, 1)});
  EXPECT_GT(qRed(image.pixel(100, 50)), 100);
  EXPECT_EQ(qRed(image.pixel(40, 20)), 0);
}

struct PictureTest : Desk {
  PictureTest() {
    window.Add(picture, "Picture1").Place(0, 0, 3000, 3000);
    picture.Scale = {0, 400, 200, -800};
    picture.BackColor = Ground;
    const auto note = [this](const char* what) {
      return [this, what](int button, float x, float y) {
        log.push_back(std::string(what) + " " + std::to_string(button) + " " +
                      std::to_string(std::lround(x)) + " " + std::to_string(std::lround(y)));
      };
    };
    picture.OnMouseDown = note("down");
    picture.OnMouseMove = note("move");
    picture.OnMouseUp = note("up");
    Show();
  }
  PictureBox picture;
};

TEST_F(PictureTest, MouseSpeaksInThePicturesScaleAlsoBeyondItsEdge) {
  driver.Drag("Form.Picture1", 0.25, 0.25, 1.5, 0.75);
  driver.Settle();
  // The way to the first point is told as well.
  std::erase(log, "move 0 50 200");
  ASSERT_GE(log.size(), 3U);
  EXPECT_EQ(log.front(), "down 1 50 200");
  EXPECT_EQ(log[log.size() - 2], "move 1 300 -200");
  EXPECT_EQ(log.back(), "up 1 300 -200");
}

TEST_F(PictureTest, OverlayComesAndGoesWithoutTouchingThePicture) {
  const auto pixel = [&](int y, int x = 100) {
    driver.Settle();
    return driver.Find("Form.Picture1")->grab().toImage().pixelColor(x, y);
  };
  picture.Line(0, 100, 200, 100, Rgb(0, 255, 0));
  const QColor ground = pixel(60);
  EXPECT_EQ(ColourOf(pixel(50, 90)), Ground) << "between two divisions";
  EXPECT_GT(pixel(75).green(), 100);
  picture.Overlay = {LineIn(picture.Scale, 0, 160, 200, 160)};
  EXPECT_GT(pixel(60).red(), 100);
  picture.Overlay.clear();
  EXPECT_EQ(pixel(60), ground);
  picture.Cls();
  EXPECT_LT(pixel(75).green(), 100);
}

// Three traces end at the same height, one above the picture and one below it.
TEST(PicturePainter, NamesOfTracesCoverNeitherEachOtherNorTheEdges) {
  const QRectF area(0, 0, 400, 200);
  std::vector<PictureText> texts;
  for (const float y : {0.0F, 0.0F, 0.0F, 900.0F, -900.0F}) {
    texts.push_back({PictureText::Place::TraceEnd, 100, y, "Name", Red, {0, 400, 100, -800}});
  }
  const auto rowsWithInk = [&](int count) {
    QImage image(400, 200, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setFont(QApplication::font());
    PaintNames(painter, area, {texts.begin(), texts.begin() + count}, Qt::black);
    painter.end();
    int rows = 0;
    for (int y = 0; y < image.height(); ++y) {
      int ink = 0;
      for (int x = 0; x < image.width(); ++x) ink += image.pixelColor(x, y).red() > 100;
      rows += ink > 0;
    }
    return rows;
  };
  const int one = rowsWithInk(1);
  ASSERT_GT(one, 5);
  for (int count = 2; count <= 5; ++count) EXPECT_EQ(rowsWithInk(count), count * one) << count;
}

struct CopyTest : Desk {
  CopyTest() {
    window.Add(field, "Text1").Place(150, 4050, 1500, 300);
    window.Add(axis, "Label3").Place(0, 300, 600, 240);
    window.Add(plot, "Picture1").Place(750, 300, 4500, 3000);
    window.Add(other, "Label9").Place(3000, 4050, 1500, 300);
    Show();
    driver.Find("Form.Text1")->setFocus();
    QApplication::clipboard()->setText(QStringLiteral("before"));
  }
  void Copy() { Key("Form", Qt::Key_C, Qt::ControlModifier); }
  static std::string Held() { return QApplication::clipboard()->text().toStdString(); }
  TextBox field;
  Label axis, other;
  PictureBox plot;
};

TEST_F(CopyTest, PictureAndTextGoToTheClipboard) {
  Copy();
  plot.OnCopy = [] { return std::string(); };
  Copy();
  EXPECT_EQ(Held(), "before") << "there is nothing to copy";
  plot.OnCopy = [] { return std::string("Kp\t8\n"); };
  Copy();
  EXPECT_TRUE(Held().starts_with("Plain\tcopied\t20")) << Held();
  EXPECT_TRUE(Held().ends_with("\nKp\t8\n"));
  EXPECT_EQ(QApplication::clipboard()->image().size(), QSize(350, 200))
      << "with the axis beside it";
  driver.Type("Form.Text1", "77");
  Key("Form", Qt::Key_A, Qt::ControlModifier);
  Copy();
  EXPECT_EQ(Held(), "77") << "what is selected in a field comes first";
}

}  // namespace
}  // namespace gainsmith::test
