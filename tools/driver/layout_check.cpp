// LayoutFaults: measured on the widgets as they are shown.
#include "driver/layout_check.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <QWidget>

namespace gainsmith::test {
namespace {

// Letters may touch the edge of their place.
constexpr int TolerancePixels = 1;
constexpr int ButtonMarginPixels = 3;
constexpr int CaptionMarginPixels = 10;

std::string NameOf(const QWidget& widget) { return widget.objectName().toStdString(); }

// A text that is shown, and the width it may take.
struct Shown {
  QString Text;
  int Room;
};

void AddButtonText(std::vector<Shown>& texts, const QAbstractButton& button) {
  QStyleOptionButton option;
  option.initFrom(&button);
  int room = button.width() - 2 * ButtonMarginPixels;
  if (button.inherits("QCheckBox")) {
    room = button.style()->subElementRect(QStyle::SE_CheckBoxContents, &option, &button).width();
  } else if (button.inherits("QRadioButton")) {
    room = button.style()->subElementRect(QStyle::SE_RadioButtonContents, &option, &button).width();
  } else if (!button.inherits("QPushButton")) {
    return;
  }
  texts.push_back({button.text().remove(u'&'), room});
}

void AddItems(std::vector<Shown>& texts, const QComboBox& box) {
  QStyleOptionComboBox option;
  option.initFrom(&box);
  option.editable = box.isEditable();
  const QRect room =
      box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box);
  for (int i = 0; i < box.count(); ++i) texts.push_back({box.itemText(i), room.width()});
}

void CheckWidths(std::vector<std::string>& faults, const QWidget& widget) {
  std::vector<Shown> texts{
      {widget.property("caption").toString(), widget.width() - 2 * CaptionMarginPixels}};
  if (const auto* label = qobject_cast<const QLabel*>(&widget); label && !label->wordWrap()) {
    for (const QString& line : label->text().split(u'\n')) {
      texts.push_back({line, label->contentsRect().width()});
    }
  }
  if (const auto* box = qobject_cast<const QComboBox*>(&widget)) AddItems(texts, *box);
  if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
    AddButtonText(texts, *button);
  }
  for (const Shown& shown : texts) {
    const int needed = widget.fontMetrics().horizontalAdvance(shown.Text);
    if (shown.Text.isEmpty() || needed <= shown.Room + TolerancePixels) continue;
    faults.push_back(NameOf(widget) + ": \"" + shown.Text.toStdString() + "\" needs " +
                     std::to_string(needed) + " pixels and has " + std::to_string(shown.Room));
  }
}

void CheckHeight(std::vector<std::string>& faults, const QLabel& label) {
  const QRect room = label.contentsRect();
  const int flags = label.wordWrap() ? Qt::TextWordWrap : 0;
  const QRect needed =
      label.fontMetrics().boundingRect(QRect(0, 0, room.width(), 10'000), flags, label.text());
  if (label.text().isEmpty() || needed.height() <= room.height() + TolerancePixels) return;
  faults.push_back(NameOf(label) + ": \"" + label.text().toStdString() + "\" is " +
                   std::to_string(needed.height()) + " pixels high and has " +
                   std::to_string(room.height()));
}

void CheckTabs(std::vector<std::string>& faults, const QTabBar& bar) {
  if (bar.count() == 0 || bar.tabRect(bar.count() - 1).right() <= bar.width()) return;
  faults.push_back(NameOf(*bar.parentWidget()) + ": not all tabs are in view");
}

// Whether the widget stands for a control, and is not a part of one.
bool IsControl(const QWidget& widget) {
  return widget.isVisible() && !widget.isWindow() && widget.objectName().contains(u'.') &&
         !widget.objectName().startsWith(u"qt_");
}

void CheckSiblings(std::vector<std::string>& faults, const QWidget& parent) {
  std::vector<const QWidget*> controls;
  for (const QObject* child : parent.children()) {
    const auto* widget = qobject_cast<const QWidget*>(child);
    if (widget != nullptr && IsControl(*widget)) controls.push_back(widget);
  }
  for (std::size_t i = 0; i < controls.size(); ++i) {
    if (!parent.rect().contains(controls[i]->geometry())) {
      faults.push_back(NameOf(*controls[i]) + ": reaches out of what it lies in");
    }
    for (std::size_t j = i + 1; j < controls.size(); ++j) {
      if (!controls[i]->geometry().intersects(controls[j]->geometry())) continue;
      faults.push_back(NameOf(*controls[i]) + " and " + NameOf(*controls[j]) + " overlap");
    }
  }
}

}  // namespace

std::vector<std::string> LayoutFaults(const QWidget& window) {
  std::vector<std::string> faults;
  CheckSiblings(faults, window);
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    if (!widget->isVisible()) continue;
    CheckWidths(faults, *widget);
    if (const auto* label = qobject_cast<const QLabel*>(widget)) CheckHeight(faults, *label);
    if (const auto* bar = qobject_cast<const QTabBar*>(widget)) CheckTabs(faults, *bar);
    CheckSiblings(faults, *widget);
  }
  return faults;
}

}  // namespace gainsmith::test
