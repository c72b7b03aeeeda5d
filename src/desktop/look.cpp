// The look: palettes and colours.
#include "desktop/look.h"

#include <QApplication>
#include <QFont>
#include <QFontDatabase>
#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOption>
#include <QToolTip>
#include <QWidget>
#include <algorithm>
#include <cmath>

#include "desktop/desktop_scheme.h"
#include "desktop/icons.h"
#include "desktop/quiet_screen.h"

// The resources lie in a static library; the linker keeps them only if asked for.
static void KeepResources() { Q_INIT_RESOURCE(icons); }

namespace gainsmith {
namespace {

constexpr int FontHeightPixels = 12;
constexpr int ToolBarLineDarker = 140;
constexpr int MenuBarLineDarker = 111;
constexpr double ReadableContrast = 4.5;

QPalette PaletteOf(const SchemeColours& colours) {
  QPalette palette(QColor(colours.Button), QColor(colours.Window));
  const QColor text(colours.WindowText);
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Text, text);
  palette.setColor(QPalette::ButtonText, text);
  palette.setColor(QPalette::Base, QColor(colours.Base));
  palette.setColor(QPalette::AlternateBase, QColor(colours.AlternateBase));
  palette.setColor(QPalette::Highlight, QColor(colours.Highlight));
  palette.setColor(QPalette::HighlightedText, QColor(colours.HighlightedText));
  palette.setColor(QPalette::Link, QColor(colours.Link));
  palette.setColor(QPalette::ToolTipBase, QColor(colours.ToolTipBase));
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::PlaceholderText, QColor(colours.Placeholder));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(colours.Disabled));
  }
  palette.setColor(QPalette::Disabled, QPalette::Base, QColor(colours.Window));
  palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(colours.Disabled));
  return palette;
}

double Luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
         0.0722 * linear(colour.blueF());
}

double Contrast(const QColor& a, const QColor& b) {
  const double first = Luminance(a);
  const double second = Luminance(b);
  return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

// Fusion in the manner of our own windows: no pictures on the buttons of message boxes, and drawn
// ones in place of its bitmaps. Every bar asks for the arrows that show where it is too short; the
// first bitmap makes Qt load all its readers of picture formats, which the start waits for.
class Style final : public QProxyStyle {
 public:
  Style() : QProxyStyle(QStringLiteral("Fusion")) {}
  QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                     const QWidget* widget) const override {
    switch (icon) {
      case SP_ToolBarHorizontalExtensionButton:
        return ProgramIcon("more-right");
      case SP_ToolBarVerticalExtensionButton:
        return ProgramIcon("more-down");
      case SP_MessageBoxInformation:
        return ProgramIcon("message-information");
      case SP_MessageBoxWarning:
        return ProgramIcon("message-warning");
      case SP_MessageBoxCritical:
        return ProgramIcon("message-critical");
      default:
        return QProxyStyle::standardIcon(icon, option, widget);
    }
  }
  // Fusion blends its lines, for which Qt starts threads, and the line below its menus has a gap
  // behind each where a screen is scaled: plain lines do.
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override {
    if (element == CE_ToolBar) return DrawBottomLine(*painter, *option, ToolBarLineDarker);
    QProxyStyle::drawControl(element, option, painter, widget);
    const bool opened = (option->state & State_Selected) && (option->state & State_Sunken);
    if (element == CE_MenuBarEmptyArea || (element == CE_MenuBarItem && !opened)) {
      DrawBottomLine(*painter, *option, MenuBarLineDarker);
    }
  }
  // The boxes and rings of a window that is drawn smaller than it is.
  int pixelMetric(PixelMetric metric, const QStyleOption* option,
                  const QWidget* widget) const override {
    const int pixels = QProxyStyle::pixelMetric(metric, option, widget);
    switch (metric) {
      case PM_IndicatorWidth:
      case PM_IndicatorHeight:
      case PM_ExclusiveIndicatorWidth:
      case PM_ExclusiveIndicatorHeight:
        break;
      default:
        return pixels;
    }
    const int font = widget == nullptr ? FontHeightPixels : widget->font().pixelSize();
    return font > 0 && font < FontHeightPixels ? pixels * font / FontHeightPixels : pixels;
  }
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* result) const override {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
    return QProxyStyle::styleHint(hint, option, widget, result);
  }

 private:
  static void DrawBottomLine(QPainter& painter, const QStyleOption& option, int darker) {
    // Fusion's own, which may lie below it, begins half a pixel higher.
    const QRectF line(option.rect.left(), option.rect.bottom() - 0.5, option.rect.width(), 1.5);
    painter.fillRect(line, option.palette.color(QPalette::Window).darker(darker));
  }
};

}  // namespace

void ApplyLook(QApplication& application) {
  KeepScreenQuiet();
  KeepResources();
  const QColor before = application.palette().color(QPalette::Window);
  const Scheme desktops = Luminance(before) < 0.2 ? Scheme::Dark : Scheme::Light;
  QApplication::setStyle(new Style);
  QFont font = application.font();
  // Not all of them: for a family that is not there Qt first looks for what comes nearest, to ask
  // for which takes longer than to list them all.
  const QStringList families = QFontDatabase::families();
  for (const auto& family : {QStringLiteral("Liberation Sans"), QStringLiteral("Arial"),
                             QStringLiteral("DejaVu Sans")}) {
    // Of a family that several foundries make, each is listed with its foundry.
    const bool isThere = std::any_of(families.begin(), families.end(), [&](const QString& listed) {
      return listed == family || listed.startsWith(family + QStringLiteral(" ["));
    });
    if (!isThere) continue;
    font.setFamily(family);
    break;
  }
  // The windows' places are fixed, so the letters are, too: in device-independent pixels.
  font.setPixelSize(FontHeightPixels);
  QApplication::setFont(font);
  QToolTip::setFont(font);
  QApplication::setWindowIcon(ProgramIcon("gainsmith"));
  ApplyScheme(desktops);
  const auto apply = [](bool dark) { ApplyScheme(dark ? Scheme::Dark : Scheme::Light); };
  // At first "no preference" leaves what Qt's own palette says.
  FollowDesktopScheme([apply](bool dark) { return dark ? apply(true) : void(); }, apply);
}

void ApplyScheme(Scheme scheme) {
  const QPalette palette = PaletteOf(ColoursOf(scheme));
  QApplication::setPalette(palette);
  QToolTip::setPalette(palette);
}

Scheme PresentScheme() {
  return Luminance(QApplication::palette().color(QPalette::Window)) < 0.2 ? Scheme::Dark
                                                                          : Scheme::Light;
}

QColor Readable(const QColor& wanted, const QColor& background) {
  if (Contrast(wanted, background) >= ReadableContrast) return wanted;
  const bool lighter = TextOn(background) == QColor(Qt::white);
  float hue = 0;
  float saturation = 0;
  float lightness = 0;
  wanted.getHslF(&hue, &saturation, &lightness);
  QColor colour = wanted;
  while (Contrast(colour, background) < ReadableContrast && lightness > 0 && lightness < 1) {
    lightness = std::clamp(lightness + (lighter ? 0.04F : -0.04F), 0.0F, 1.0F);
    colour = QColor::fromHslF(hue, saturation, lightness);
  }
  return colour;
}

QColor TextOn(const QColor& background) {
  return Contrast(Qt::white, background) >= Contrast(Qt::black, background) ? Qt::white : Qt::black;
}

}  // namespace gainsmith
