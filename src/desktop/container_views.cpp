// Views of frames and tabs.
#include <QGroupBox>
#include <QPainter>
#include <QTabBar>

#include "desktop/control_view.h"
#include "desktop/look.h"
#include "desktop/record_values.h"
#include "desktop/window_view.h"

namespace gainsmith {
namespace {

// Controls on a page are placed inside the whole tab control; its strip takes 360 twips.
constexpr int TabStripHeightPixels = 24;
constexpr float LineOpacity = 0.25F;

// A group box whose border starts in the middle of its caption, as the places of its contents
// expect, and not below it.
class FrameBox final : public QWidget {
 public:
  using QWidget::QWidget;
  QString Caption;
  bool Border = true;

  [[nodiscard]] QFont CaptionFont() const {
    QFont bold = font();
    bold.setBold(true);
    return bold;
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    if (!Border) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QFontMetrics metrics(CaptionFont());
    const int captionWidth = metrics.horizontalAdvance(Caption);
    const qreal top = Caption.isEmpty() ? 0 : metrics.height() / 2.0;
    QColor line = palette().color(QPalette::WindowText);
    line.setAlphaF(LineOpacity);
    if (!Caption.isEmpty()) {
      const QRect gap(CaptionLeft - CaptionGap, 0, captionWidth + 2 * CaptionGap, metrics.height());
      painter.setClipRegion(QRegion(rect()) - gap);
    }
    painter.setPen(line);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, top + 0.5, -0.5, -0.5), 4, 4);
    painter.setClipping(false);
    painter.setFont(CaptionFont());
    painter.setPen(
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    painter.drawText(QPoint(CaptionLeft, metrics.ascent()), Caption);
  }

 private:
  static constexpr int CaptionLeft = 10;
  static constexpr int CaptionGap = 3;
};

class FrameView final : public ControlView {
 public:
  FrameView(WindowView& window, Frame& record, FrameBox* box)
      : ControlView(window, record, box), record_(record), box_(box) {}

 protected:
  void ReflectCaption() override {
    box_->Caption = ShownText(record_.Caption);
    box_->setProperty("caption", box_->Caption);
    box_->update();
  }
  void ReflectOwn() override {
    if (!Changed(border_, record_.Border)) return;
    box_->Border = record_.Border;
    box_->update();
  }

 private:
  Frame& record_;
  FrameBox* box_;
  std::optional<bool> border_;
};

// A strip of tabs above one page for each.
class TabsPane final : public QWidget {
 public:
  TabsPane(QWidget* parent, int stripHeight)
      : QWidget(parent), StripHeight(stripHeight), Bar(new QTabBar(this)) {
    Bar->setFixedHeight(StripHeight);
    Bar->setExpanding(false);
    Bar->setDrawBase(false);
  }
  const int StripHeight;
  QTabBar* const Bar;
  std::vector<QWidget*> Pages;

  void ShowPage(int current) {
    for (int i = 0; i < static_cast<int>(Pages.size()); ++i) {
      Pages[static_cast<std::size_t>(i)]->setVisible(i == current);
    }
  }

 protected:
  void resizeEvent(QResizeEvent*) override {
    Bar->setGeometry(0, 0, width(), StripHeight);
    for (QWidget* page : Pages) {
      page->setGeometry(0, StripHeight, width(), height() - StripHeight);
    }
  }
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    QColor line = palette().color(QPalette::WindowText);
    line.setAlphaF(LineOpacity);
    painter.setPen(line);
    painter.drawRect(rect().adjusted(0, StripHeight - 1, -1, -1));
  }
};

constexpr int TabDarkening = 120;

class TabsView final : public ControlView {
 public:
  TabsView(WindowView& window, Tabs& record, TabsPane* pane)
      : ControlView(window, record, pane), record_(record), pane_(pane) {
    for (const std::string& page : record.Pages) {
      pane_->Pages.push_back(new QWidget(pane_));
      pane_->Bar->addTab(ShownText(page));
    }
    pane_->ShowPage(pane_->Bar->currentIndex());
    connect(pane_->Bar, &QTabBar::currentChanged, this, [this](int page) {
      pane_->ShowPage(page);
      if (MayChange()) record_.CurrentPage = page;
    });
  }

  QWidget* PageParent(int page) override { return pane_->Pages.at(static_cast<std::size_t>(page)); }
  [[nodiscard]] QPoint PageOrigin() const override { return {0, pane_->StripHeight}; }
  QWidget* FocusWidget() override { return pane_->Bar; }

 protected:
  void ReflectOwn() override { pane_->Bar->setCurrentIndex(record_.CurrentPage); }
  void ReflectColours() override {
    ControlView::ReflectColours();
    // The style draws tabs lighter than the buttons of a dark palette; the pages are not.
    QPalette palette;
    if (PresentScheme() == Scheme::Dark) {
      palette.setColor(QPalette::Button, palette.color(QPalette::Window).darker(TabDarkening));
    }
    pane_->Bar->setPalette(palette);
  }

 private:
  Tabs& record_;
  TabsPane* pane_;
};

}  // namespace

ControlView* MakeFrameView(WindowView& window, Frame& record, QWidget* parent) {
  return new FrameView(window, record, new FrameBox(parent));
}

ControlView* MakeTabsView(WindowView& window, Tabs& record, QWidget* parent) {
  return new TabsView(window, record, new TabsPane(parent, window.Scaled(TabStripHeightPixels)));
}

}  // namespace gainsmith
