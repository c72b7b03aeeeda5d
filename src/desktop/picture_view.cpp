// View of a picture box.
#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>

#include "desktop/control_view.h"
#include "desktop/picture_painter.h"
#include "desktop/window_view.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

int ButtonBit(Qt::MouseButton button) {
  if (button == Qt::LeftButton) return LeftButton;
  return button == Qt::RightButton ? RightButton : NoButton;
}

int ButtonBits(Qt::MouseButtons buttons) {
  return ((buttons & Qt::LeftButton) != 0 ? LeftButton : NoButton) |
         ((buttons & Qt::RightButton) != 0 ? RightButton : NoButton);
}

// Keeps its lines painted on a ground of the screen's own resolution, so that the lines over the
// picture can move without painting it anew.
class PictureArea final : public QWidget {
 public:
  explicit PictureArea(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
  }
  QColor Ground;
  std::vector<PictureLine> Lines;
  std::vector<PictureText> Texts;
  std::vector<PictureLine> Overlay;
  std::function<void(QMouseEvent&)> OnMouse;

  void DropGround() {
    ground_ = QPixmap();
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const qreal resolution = painter.device()->devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * resolution).toSize();
    if (ground_.size() != pixels) PaintGround(pixels, resolution);
    painter.drawPixmap(0, 0, ground_);
    PaintLines(painter, rect(), Overlay);
  }
  void mousePressEvent(QMouseEvent* event) override { OnMouse(*event); }
  void mouseDoubleClickEvent(QMouseEvent* event) override { OnMouse(*event); }
  void mouseMoveEvent(QMouseEvent* event) override { OnMouse(*event); }
  void mouseReleaseEvent(QMouseEvent* event) override { OnMouse(*event); }

 private:
  void PaintGround(const QSize& pixels, qreal resolution) {
    ground_ = QPixmap(pixels);
    ground_.setDevicePixelRatio(resolution);
    QPainter painter(&ground_);
    PaintGraticule(painter, rect(), Ground);
    painter.setFont(font());
    PaintAxisTexts(painter, rect(), Texts);
    PaintLines(painter, rect(), Lines);
    PaintNames(painter, rect(), Texts, Ground);
  }

  QPixmap ground_;
};

// The picture with the labels of its axes, which stand beside it.
QRect WithLabels(const PictureArea& area) {
  constexpr int MostDistancePixels = 40;
  QRect whole = area.geometry();
  const QRect near =
      whole.adjusted(-area.x(), -MostDistancePixels, area.parentWidget()->width() - whole.right(),
                     MostDistancePixels);
  for (const QLabel* label :
       area.parentWidget()->findChildren<QLabel*>(Qt::FindDirectChildrenOnly)) {
    if (label->isVisible() && near.contains(label->geometry())) whole |= label->geometry();
  }
  return whole;
}

class PictureBoxView final : public ControlView {
 public:
  PictureBoxView(WindowView& window, PictureBox& record, PictureArea* area)
      : ControlView(window, record, area), record_(record), area_(area) {
    area_->OnMouse = [this](QMouseEvent& event) { OnMouse(event); };
  }

  bool Copy() override {
    const std::string text = record_.OnCopy ? record_.OnCopy() : std::string();
    if (text.empty()) return false;
    QWidget& window = Owner().TopLevel();
    const QRect place = WithLabels(*area_);
    auto* data = new QMimeData;
    data->setText(
        QStringLiteral("%1\tcopied\t%2\n")
            .arg(window.windowTitle(), QDateTime::currentDateTime().toString(Qt::ISODate)) +
        ToQt(text));
    data->setImageData(
        window.grab(QRect(area_->parentWidget()->mapTo(&window, place.topLeft()), place.size()))
            .toImage());
    QApplication::clipboard()->setMimeData(data);
    return true;
  }

 protected:
  void ReflectColours() override {
    area_->Ground = Background();
    area_->DropGround();
  }
  void ReflectOwn() override {
    if (Changed(revision_, record_.Revision)) {
      area_->Lines = record_.Lines;
      area_->Texts = record_.Texts;
      area_->DropGround();
    }
    if (area_->Overlay != record_.Overlay) {
      area_->Overlay = record_.Overlay;
      area_->update();
    }
  }

 private:
  // The position is put into the user scale when the handler's turn has come: the scale may have
  // changed by then, and the handler reckons in the present one.
  void OnMouse(QMouseEvent& event) {
    const double right = event.position().x() / area_->width();
    const double down = event.position().y() / area_->height();
    const auto call = [&](auto PictureBox::*handler, int button, const void* mergeKey) {
      UserAction action;
      action.Allowed = [&record = record_] { return WithinReach(record); };
      action.Run = [&record = record_, handler, button, right, down] {
        if (!(record.*handler)) return;
        const PictureScale& scale = record.Scale;
        (record.*handler)(button, static_cast<float>(scale.Left + right * scale.Width),
                          static_cast<float>(scale.Top + down * scale.Height));
      };
      action.MergeKey = mergeKey;
      Owner().Post(std::move(action));
    };
    switch (event.type()) {
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonDblClick:
        call(&PictureBox::OnMouseDown, ButtonBit(event.button()), nullptr);
        break;
      case QEvent::MouseButtonRelease:
        call(&PictureBox::OnMouseUp, ButtonBit(event.button()), nullptr);
        break;
      default:
        call(&PictureBox::OnMouseMove, ButtonBits(event.buttons()), &record_);
    }
  }

  PictureBox& record_;
  PictureArea* area_;
  std::optional<std::uint64_t> revision_;
};

}  // namespace

ControlView* MakePictureBoxView(WindowView& window, PictureBox& record, QWidget* parent) {
  return new PictureBoxView(window, record, new PictureArea(parent));
}

}  // namespace gainsmith
