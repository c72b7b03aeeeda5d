// Views of combo boxes and grids.
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QTableWidget>
#include <QWheelEvent>

#include "desktop/control_view.h"
#include "desktop/look.h"
#include "desktop/window_view.h"

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
    connect(box_, &QComboBox::activated, this, [this](int index) { OnChosen(index); });
    if (!record.Editable) return;
    connect(box_->lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
      if (Owner().Detached()) return;
      record_.Text = FromQt(text);
      record_.ListIndex = -1;
      text_ = record_.Text;
      listIndex_ = record_.ListIndex;
    });
  }

  void Forget() override {
    ControlView::Forget();
    listIndex_.reset();
    text_.reset();
  }

 protected:
  void ReflectOwn() override {
    if (Changed(items_, record_.Items)) {
      ReflectItems();
      listIndex_.reset();
      text_.reset();
    }
    if (Changed(listIndex_, record_.ListIndex) && box_->currentIndex() != record_.ListIndex) {
      box_->setCurrentIndex(record_.ListIndex);
    }
    if (record_.Editable && Changed(text_, record_.Text)) box_->setEditText(ToQt(record_.Text));
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
    }
  }
  void OnChosen(int index) {
    Post([&record = record_, index] {
      if (index < 0 || index >= static_cast<int>(record.Items.size())) return;
      record.Choose(index);
      if (record.OnClick) record.OnClick();
    });
  }

  ComboBox& record_;
  QuietComboBox* box_;
  std::optional<std::vector<ListItem>> items_;
  std::optional<int> listIndex_;
  std::optional<std::string> text_;
};

class GridView final : public ControlView {
 public:
  GridView(WindowView& window, Grid& record, QTableWidget* table)
      : ControlView(window, record, table), record_(record), table_(table) {
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setAlternatingRowColors(true);
    table_->setTabKeyNavigation(false);
    table_->setWordWrap(false);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->verticalHeader()->setDefaultSectionSize(GridRowHeightPixels);
    table_->horizontalHeader()->setHighlightSections(false);
    table_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table_->horizontalHeader()->setStretchLastSection(true);
    connect(table_, &QTableWidget::currentCellChanged, this, [this](int row) {
      if (Owner().Host().Reflecting || Owner().Detached()) return;
      record_.CurrentRow = row;
      currentRow_ = row;
    });
  }

 protected:
  void ReflectOwn() override {
    if (Changed(columns_, record_.Columns)) ReflectColumns();
    if (Changed(rows_, record_.Rows)) {
      ReflectRows();
      currentRow_.reset();
    }
    if (Changed(currentRow_, record_.CurrentRow)) table_->setCurrentCell(record_.CurrentRow, 1);
  }

 private:
  void ReflectColumns() {
    QStringList headings;
    for (const GridColumn& column : record_.Columns) headings.push_back(ShownText(column.Heading));
    table_->setColumnCount(static_cast<int>(headings.size()));
    table_->setHorizontalHeaderLabels(headings);
    for (int i = 0; i < table_->columnCount(); ++i) {
      const int widthTwips = record_.Columns[static_cast<std::size_t>(i)].WidthTwips;
      table_->setColumnHidden(i, widthTwips == 0);
      if (widthTwips != 0) table_->setColumnWidth(i, PixelsFromTwips(widthTwips));
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

  Grid& record_;
  QTableWidget* table_;
  std::optional<std::vector<GridColumn>> columns_;
  std::optional<std::vector<std::vector<std::string>>> rows_;
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
