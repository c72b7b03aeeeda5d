// Views of combo boxes and grids.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QTableWidget>
#include <QWheelEvent>
#include <algorithm>
#include <functional>
#include <utility>

#include "desktop/control_view.h"
#include "desktop/record_values.h"
#include "desktop/window_view.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

constexpr int GridRowHeightPixels = 20;

// A list that the wheel changes only while it has the keyboard, not when scrolled past.
class QuietComboBox final : public QComboBox {
 public:
  using QComboBox::QComboBox;

 protected:
  void wheelEvent(QWheelEvent* event) override {
    if (hasFocus()) {
      QComboBox::wheelEvent(event);
    } else {
      event->ignore();
    }
  }
};

class ComboBoxView final : public ControlView {
 public:
  ComboBoxView(WindowView& window, ComboBox& record, QuietComboBox* box)
      : ControlView(window, record, box), record_(record), box_(box) {
    box_->setEditable(record.Editable);
    box_->setInsertPolicy(QComboBox::NoInsert);
    box_->setFocusPolicy(Qt::StrongFocus);
    connect(box_, &QComboBox::currentIndexChanged, this,
            [this](int index) { changed_ = index >= 0 && PostChoice(index); });
    // A user's choice comes here too, behind its change; alone when it is what was chosen before.
    connect(box_, &QComboBox::activated, this, [this](int index) {
      if (!std::exchange(changed_, false)) PostChoice(index);
    });
    if (!record.Editable) return;
    connect(box_->lineEdit(), &QLineEdit::textChanged, this,
            [this](const QString& text) { PostText(text); });
  }

  void Forget() override {
    ControlView::Forget();
    // Their colours are the palette's.
    items_.reset();
    listIndex_.reset();
  }

 protected:
  void ReflectOwn() override {
    if (HasPosted()) return;
    ReflectTip();
    if (Changed(items_, record_.Items)) {
      ReflectItems();
      listIndex_.reset();
    }
    const bool indexChanged = Changed(listIndex_, record_.ListIndex);
    if (!record_.Editable) {
      box_->setCurrentIndex(record_.ListIndex);
      return;
    }
    // A typed text leaves the widget at the entry that was chosen before it.
    const QString text = ToQt(record_.Text);
    if (!indexChanged && box_->currentText() == text) return;
    box_->setCurrentIndex(record_.ListIndex);
    box_->setEditText(text);
  }

 private:
  void ReflectItems() {
    box_->clear();
    for (const ListItem& item : record_.Items) {
      box_->addItem(ShownText(item.Text));
      const int index = box_->count() - 1;
      if (!item.ToolTip.empty()) {
        box_->setItemData(index, ShownText(item.ToolTip), Qt::ToolTipRole);
      }
      if (item.Absent) {
        box_->setItemData(index, QApplication::palette().color(QPalette::Disabled, QPalette::Text),
                          Qt::ForegroundRole);
      }
    }
  }
  // What the closed list says: of the chosen entry, else of the list.
  void ReflectTip() {
    const auto index = static_cast<std::size_t>(record_.ListIndex);
    const bool chosen = record_.ListIndex >= 0 && index < record_.Items.size();
    const std::string own = chosen ? record_.Items[index].ToolTip : "";
    if (Changed(tip_, own.empty() ? record_.ToolTip : own)) box_->setToolTip(ShownText(*tip_));
  }
  bool PostChoice(int index) {
    return Post([this, self = QPointer<ControlView>(this), &record = record_, index] {
      if (self) changed_ = false;
      if (index < 0 || index >= static_cast<int>(record.Items.size())) return;
      record.Choose(index);
      if (record.OnClick) record.OnClick();
    });
  }
  // The text of an entry that is being chosen comes here too, ahead of the choice.
  void PostText(const QString& text) {
    Post([this, self = QPointer<ControlView>(this), &record = record_, typed = FromQt(text)] {
      if (record.Text == typed) return;
      record.Text = typed;
      record.ListIndex = -1;
      if (self) listIndex_ = record.ListIndex;
    });
  }

  ComboBox& record_;
  QuietComboBox* box_;
  std::optional<std::vector<ListItem>> items_;
  std::optional<int> listIndex_;
  std::optional<std::string> tip_;
  // The widget has told of a change whose choice may follow in the same breath.
  bool changed_ = false;
};

// As Grid says: with tabs between the columns, for a spreadsheet.
void CopyRows(const QTableWidget& table) {
  const auto line = [&](const std::function<QString(int column)>& text) {
    QStringList cells;
    for (int column = 0; column < table.columnCount(); ++column) {
      if (!table.isColumnHidden(column)) cells += text(column);
    }
    return cells.join(u'\t') + u'\n';
  };
  const QItemSelectionModel& selection = *table.selectionModel();
  QString text = line([&](int column) { return table.horizontalHeaderItem(column)->text(); });
  for (int row = 0; row < table.rowCount(); ++row) {
    if (selection.hasSelection() && !selection.isRowSelected(row)) continue;
    text += line([&](int column) {
      const QTableWidgetItem* item = table.item(row, column);
      return item == nullptr ? QString() : item->text();
    });
  }
  QApplication::clipboard()->setText(text);
}

class GridView final : public ControlView {
 public:
  GridView(WindowView& window, Grid& record, QTableWidget* table)
      : ControlView(window, record, table), record_(record), table_(table) {
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(record.ManySelected ? QAbstractItemView::ExtendedSelection
                                                 : QAbstractItemView::SingleSelection);
    table_->setAlternatingRowColors(true);
    table_->setTabKeyNavigation(false);
    table_->setWordWrap(false);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->verticalHeader()->setDefaultSectionSize(window.Scaled(GridRowHeightPixels));
    table_->horizontalHeader()->setHighlightSections(false);
    table_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table_->horizontalHeader()->setStretchLastSection(true);
    connect(table_, &QTableWidget::itemSelectionChanged, this, [this] { OnSelected(); });
    auto* copy = new QAction(QStringLiteral("&Copy"), table_);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, table_, [table] { CopyRows(*table); });
    table_->addAction(copy);
    table_->setContextMenuPolicy(Qt::ActionsContextMenu);
  }

 protected:
  void ReflectOwn() override {
    if (Changed(columns_, record_.Columns)) ReflectColumns();
    const bool rowsChanged = Changed(rows_, record_.Rows);
    if (Changed(headingRows_, record_.HeadingRows) || rowsChanged) {
      ReflectRows();
      ReflectHeadings();
      currentRow_.reset();
    }
    if (!Changed(currentRow_, record_.CurrentRow)) return;
    table_->clearSelection();
    table_->setCurrentCell(record_.CurrentRow, 1);
  }

 private:
  void OnSelected() {
    currentRow_.reset();
    const auto selected = table_->selectionModel()->selectedRows();
    if (selected.isEmpty() || !MayChange()) return;
    record_.CurrentRow = selected.constFirst().row();
    currentRow_ = record_.CurrentRow;
  }
  void ReflectColumns() {
    QStringList headings;
    for (const GridColumn& column : record_.Columns) headings.push_back(ShownText(column.Heading));
    table_->setColumnCount(static_cast<int>(headings.size()));
    table_->setHorizontalHeaderLabels(headings);
    for (int i = 0; i < table_->columnCount(); ++i) {
      const int widthTwips = record_.Columns[static_cast<std::size_t>(i)].WidthTwips;
      table_->setColumnHidden(i, widthTwips == 0);
      if (widthTwips != 0) table_->setColumnWidth(i, Owner().Pixels(widthTwips));
    }
  }
  void ReflectRows() {
    table_->setRowCount(static_cast<int>(record_.Rows.size()));
    for (int row = 0; row < table_->rowCount(); ++row) {
      const auto& texts = record_.Rows[static_cast<std::size_t>(row)];
      for (int column = 0; column < static_cast<int>(texts.size()); ++column) {
        const QString text = ShownText(texts[static_cast<std::size_t>(column)]);
        QTableWidgetItem* item = table_->item(row, column);
        if (item == nullptr) {
          table_->setItem(row, column, new QTableWidgetItem(text));
        } else if (item->text() != text) {
          item->setText(text);
        }
      }
    }
  }

  void ReflectHeadings() {
    table_->clearSpans();
    int first = 0;
    while (first < table_->columnCount() && table_->isColumnHidden(first)) ++first;
    for (int row = 0; row < table_->rowCount(); ++row) {
      const auto& headings = record_.HeadingRows;
      const bool heads = std::find(headings.begin(), headings.end(), row) != headings.end();
      if (heads) table_->setSpan(row, first, 1, table_->columnCount() - first);
      QTableWidgetItem* item = table_->item(row, first);
      if (item == nullptr) continue;
      QFont font = table_->font();
      font.setBold(heads);
      item->setFont(font);
    }
  }

  Grid& record_;
  QTableWidget* table_;
  std::optional<std::vector<GridColumn>> columns_;
  std::optional<std::vector<std::vector<std::string>>> rows_;
  std::optional<std::vector<int>> headingRows_;
  std::optional<int> currentRow_;
};

}  // namespace

ControlView* MakeComboBoxView(WindowView& window, ComboBox& record, QWidget* parent) {
  return new ComboBoxView(window, record, new QuietComboBox(parent));
}

ControlView* MakeGridView(WindowView& window, Grid& record, QWidget* parent) {
  return new GridView(window, record, new QTableWidget(parent));
}

}  // namespace gainsmith
