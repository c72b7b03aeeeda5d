// Views of what only shows: lamps, progress bars, status bars, pictures.
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QRadialGradient>
#include <QResizeEvent>

#include "desktop/control_view.h"
#include "desktop/icons.h"
#include "desktop/record_values.h"
#include "desktop/window_view.h"

namespace gainsmith {
namespace {

constexpr int StatusBarHeightPixels = 24;
constexpr int PanelMarginPixels = 6;

class LampDisc final : public QWidget {
 public:
  using QWidget::QWidget;
  // None: an empty socket.
  std::optional<QColor> Light;
  bool Marked = false;
  bool Out = false;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal side = std::min(width(), height()) - 2.0;
    QRectF disc(0, 0, side, side);
    disc.moveCenter(QRectF(rect()).center());
    QColor rim = palette().color(QPalette::WindowText);
    rim.setAlphaF(0.45F);
    painter.setPen(QPen(rim, 1));
    if (Light && Out) {
      QColor dim = *Light;
      dim.setAlphaF(0.2F);
      painter.setBrush(dim);
    } else if (Light) {
      QRadialGradient shade(disc.center() - QPointF(side / 6, side / 6), side * 0.7);
      shade.setColorAt(0, Light->lighter(150));
      shade.setColorAt(0.45, *Light);
      shade.setColorAt(1, Light->darker(150));
      painter.setBrush(shade);
    } else {
      rim.setAlphaF(0.08F);
      painter.setBrush(rim);
    }
    painter.drawEllipse(disc);
    if (Marked) PaintMark(painter, disc);
  }

 private:
  // A cross.
  static void PaintMark(QPainter& painter, const QRectF& disc) {
    const qreal reach = disc.width() * 0.2;
    painter.setPen(QPen(Qt::white, disc.width() / 9, Qt::SolidLine, Qt::RoundCap));
    for (const qreal side : {-reach, reach}) {
      painter.drawLine(disc.center() - QPointF(side, reach), disc.center() + QPointF(side, reach));
    }
  }
};

class LampView final : public ControlView {
 public:
  LampView(WindowView& window, Lamp& record, LampDisc* disc)
      : ControlView(window, record, disc), record_(record), disc_(disc) {}

 protected:
  void ReflectColours() override {
    disc_->Light = FixedColour(Record().BackColor);
    disc_->update();
  }
  void ReflectOwn() override {
    if (Changed(state_, record_.State)) disc_->setAccessibleDescription(ShownText(record_.State));
    if (!Changed(marked_, record_.Marked)) return;
    disc_->Marked = record_.Marked;
    disc_->update();
  }
  void ReflectVisible() override {
    disc_->Out = !record_.Visible;
    disc_->update();
  }

 private:
  Lamp& record_;
  LampDisc* disc_;
  std::optional<bool> marked_;
  std::optional<std::string> state_;
};

class ProgressBarView final : public ControlView {
 public:
  ProgressBarView(WindowView& window, ProgressBar& record, QProgressBar* bar)
      : ControlView(window, record, bar), record_(record), bar_(bar) {
    bar_->setTextVisible(false);
  }

 protected:
  void ReflectOwn() override {
    // Both are no work when nothing changed.
    bar_->setRange(record_.Min, record_.Max);
    bar_->setValue(record_.Value);
  }

 private:
  ProgressBar& record_;
  QProgressBar* bar_;
};

// Panels side by side, along the bottom of the window unless the record says where.
class StatusStrip final : public QWidget {
 public:
  explicit StatusStrip(QWidget* parent) : QWidget(parent), row_(new QHBoxLayout(this)) {
    row_->setContentsMargins(4, 0, 4, 0);
    row_->setSpacing(1);
  }
  std::vector<QLabel*> Panels;

  void SetCount(std::size_t count) {
    while (Panels.size() < count) {
      auto* panel = new QLabel(this);
      panel->setTextFormat(Qt::PlainText);
      panel->setIndent(PanelMarginPixels);
      panel->setContentsMargins(0, 0, PanelMarginPixels, 0);
      panel->setObjectName(QStringLiteral("%1.Panels(%2)").arg(objectName()).arg(Panels.size()));
      row_->addWidget(panel, 1);
      Panels.push_back(panel);
    }
    for (std::size_t i = 0; i < Panels.size(); ++i) Panels[i]->setVisible(i < count);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    QColor line = palette().color(QPalette::WindowText);
    line.setAlphaF(0.2F);
    painter.fillRect(0, 0, width(), 1, line);
    for (const QLabel* panel : Panels) {
      if (panel != Panels.front()) painter.fillRect(panel->x() - 1, 5, 1, height() - 9, line);
    }
  }

 private:
  QHBoxLayout* row_;
};

class StatusBarView final : public ControlView {
 public:
  StatusBarView(WindowView& window, StatusBar& record, StatusStrip* strip)
      : ControlView(window, record, strip), record_(record), strip_(strip) {
    if (record.WidthTwips == 0) strip->parentWidget()->installEventFilter(this);
  }

 protected:
  void ReflectOwn() override {
    if (record_.WidthTwips == 0) LieAlongBottom();
    if (!Changed(panels_, record_.Panels)) return;
    strip_->SetCount(record_.Panels.size());
    for (std::size_t i = 0; i < record_.Panels.size(); ++i) {
      strip_->Panels[i]->setText(ShownText(record_.Panels[i]));
    }
  }
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Resize) LieAlongBottom();
    return false;
  }

 private:
  void LieAlongBottom() {
    const QSize area = strip_->parentWidget()->size();
    const int height = Owner().Scaled(StatusBarHeightPixels);
    strip_->setGeometry(0, area.height() - height, area.width(), height);
  }

  StatusBar& record_;
  StatusStrip* strip_;
  std::optional<std::vector<std::string>> panels_;
};

class ImageArea final : public QWidget {
 public:
  using QWidget::QWidget;
  std::string Picture;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    PaintProgramPicture(painter, rect(), Picture);
  }
};

class ImageView final : public ControlView {
 public:
  ImageView(WindowView& window, Image& record, ImageArea* area)
      : ControlView(window, record, area), record_(record), area_(area) {}

 protected:
  void ReflectOwn() override {
    if (!Changed(picture_, record_.Picture)) return;
    area_->Picture = record_.Picture;
    area_->update();
  }

 private:
  Image& record_;
  ImageArea* area_;
  std::optional<std::string> picture_;
};

}  // namespace

ControlView* MakeLampView(WindowView& window, Lamp& record, QWidget* parent) {
  return new LampView(window, record, new LampDisc(parent));
}

ControlView* MakeProgressBarView(WindowView& window, ProgressBar& record, QWidget* parent) {
  return new ProgressBarView(window, record, new QProgressBar(parent));
}

ControlView* MakeStatusBarView(WindowView& window, StatusBar& record, QWidget* parent) {
  return new StatusBarView(window, record, new StatusStrip(parent));
}

ControlView* MakeImageView(WindowView& window, Image& record, QWidget* parent) {
  return new ImageView(window, record, new ImageArea(parent));
}

}  // namespace gainsmith
