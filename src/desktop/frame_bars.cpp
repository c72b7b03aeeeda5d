// Menus and tool buttons from their records.
#include "desktop/frame_bars.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <QToolBar>
#include <QToolButton>
#include <memory>
#include <vector>

#include "desktop/icons.h"
#include "desktop/record_values.h"
#include "desktop/window_view.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

constexpr QSize ToolIconSize(24, 24);

// An action and what it shows of its record.
struct MenuEntry {
  MenuItem* Record;
  QAction* Action;
  std::string Caption;

  void Reflect() {
    if (Caption != Record->Caption) {
      Caption = Record->Caption;
      Action->setText(ShownText(Caption));
    }
    // Qt compares before it does anything.
    Action->setEnabled(Record->Enabled);
    Action->setVisible(Record->Visible);
  }
};

struct ToolEntry {
  ToolButton* Record;
  QAction* Action;
};

struct Bars {
  std::vector<MenuEntry> Menus;
  std::vector<ToolEntry> Tools;
};

bool WithinReach(const MenuItem& item) { return item.Enabled && item.Visible; }
bool WithinReach(const ToolButton& button) { return button.Enabled; }

template <typename Record>
std::function<void()> Choosing(WindowView& view, Record& record) {
  return [&view, &record] {
    UserAction action;
    action.Allowed = [&record] { return WithinReach(record); };
    action.Run = [&record] {
      if (record.OnClick) record.OnClick();
    };
    view.Post(std::move(action));
  };
}

// As deep as the record's menus, which are a few.
// NOLINTNEXTLINE(misc-no-recursion)
void AddMenuItem(Bars& bars, WindowView& view, QWidget& parent, MenuItem& item) {
  if (item.Caption == "-") {
    auto* separator = new QAction(&parent);
    separator->setSeparator(true);
    parent.addAction(separator);
    return;
  }
  QAction* action = nullptr;
  if (item.Items.empty()) {
    action = new QAction(&parent);
    action->setShortcut(QKeySequence(ToQt(item.Shortcut)));
    // Also from the windows that stand over the frame; those that take all input keep them away.
    action->setShortcutContext(Qt::ApplicationShortcut);
    QObject::connect(action, &QAction::triggered, &view, Choosing(view, item));
  } else {
    auto* menu = new QMenu(&parent);
    menu->setObjectName(ToQt(view.Record().Name + "." + item.Name));
    for (MenuItem* below : item.Items) AddMenuItem(bars, view, *menu, *below);
    action = menu->menuAction();
  }
  action->setObjectName(ToQt(view.Record().Name + "." + item.Name));
  action->setText(ShownText(item.Caption));
  parent.addAction(action);
  bars.Menus.push_back({&item, action, item.Caption});
}

void AddToolButton(Bars& bars, WindowView& view, QToolBar& bar, ToolButton& button) {
  auto* action = new QAction(ProgramIcon(button.Icon), ShownText(button.ToolTip), &bar);
  action->setToolTip(ShownText(button.ToolTip));
  QObject::connect(action, &QAction::triggered, &view, Choosing(view, button));
  bar.addAction(action);
  QWidget* widget = bar.widgetForAction(action);
  widget->setObjectName(
      ToQt(view.Record().Name + ".Toolbar1(" + std::to_string(bars.Tools.size() + 1) + ")"));
  widget->setAccessibleName(action->toolTip());
  // Reachable by keyboard, as every other control is.
  widget->setFocusPolicy(Qt::TabFocus);
  bars.Tools.push_back({&button, action});
}

// Not every desktop does.
void OpenMenusByF10(QMainWindow& window) {
  auto* key = new QShortcut(Qt::Key_F10, &window);
  QObject::connect(key, &QShortcut::activated, &window, [&window] {
    const QList<QAction*> menus = window.menuBar()->actions();
    if (!menus.isEmpty()) window.menuBar()->setActiveAction(menus.constFirst());
  });
}

}  // namespace

std::function<void()> MakeFrameBars(WindowView& view, FrameWindow& record, QMainWindow& window) {
  const auto bars = std::make_shared<Bars>();
  for (MenuItem* item : record.Menus) AddMenuItem(*bars, view, *window.menuBar(), *item);
  OpenMenusByF10(window);
  if (!record.ToolButtons.empty()) {
    auto* bar = new QToolBar(&window);
    bar->setMovable(false);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    bar->setIconSize(ToolIconSize);
    for (ToolButton* button : record.ToolButtons) AddToolButton(*bars, view, *bar, *button);
    window.setContextMenuPolicy(Qt::NoContextMenu);
    window.addToolBar(bar);
  }
  return [bars] {
    for (MenuEntry& entry : bars->Menus) entry.Reflect();
    for (const ToolEntry& entry : bars->Tools) entry.Action->setEnabled(entry.Record->Enabled);
  };
}

}  // namespace gainsmith
