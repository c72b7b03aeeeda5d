// The program's icons: drawn at one size or another, they are the same.
#include <gtest/gtest.h>

#include <QPixmap>
#include <cstdlib>

#include "desktop/icons.h"
#include "desktop/look.h"

namespace gainsmith::test {
namespace {

QImage Drawn(int side, QIcon::Mode mode = QIcon::Normal) {
  const QImage image = ProgramIcon("save").pixmap(QSize(side, side), mode).toImage();
  return image.scaled(24, 24, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

// The mean difference of two pictures' colours, of 255.
double Difference(const QImage& a, const QImage& b) {
  int sum = 0;
  for (int i = 0; i < a.width() * a.height(); ++i) {
    const QColor one = a.pixelColor(i % a.width(), i / a.width());
    const QColor other = b.pixelColor(i % a.width(), i / a.width());
    sum += std::abs(one.red() - other.red()) + std::abs(one.blue() - other.blue()) +
           std::abs(one.alpha() - other.alpha());
  }
  return sum / 3.0 / a.width() / a.height();
}

TEST(IconTest, IsTheSameAtEachSizeAndOfItsScheme) {
  const QImage icon = Drawn(24);
  for (const int side : {48, 96, 240}) EXPECT_LT(Difference(icon, Drawn(side)), 8) << side;
  const QImage grey = Drawn(24, QIcon::Disabled);
  for (int x = 0; x < 24; ++x) EXPECT_EQ(grey.pixelColor(x, 12).saturation(), 0);
  EXPECT_GT(Difference(icon, grey), 20);
  ApplyScheme(Scheme::Dark);
  EXPECT_GT(Difference(icon, Drawn(24)), 20);
  EXPECT_GT(Difference(grey, Drawn(24, QIcon::Disabled)), 8);
  ApplyScheme(Scheme::Light);
}

}  // namespace
}  // namespace gainsmith::test
