// Views of labels and text boxes.
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QStyleOptionFocusRect>
#include <algorithm>
#include <iterator>
#include <utility>

#include "desktop/control_view.h"
#include "desktop/look.h"
#include "desktop/record_values.h"
#include "desktop/window_view.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

constexpr int HeadingHeightPixels = 15;
constexpr int ElidedIndentPixels = 6;

// A label that can be clicked, by keyboard too.
class TextLabel final : public QLabel {
 public:
  using QLabel::QLabel;
  std::function<void()> OnClick;

  // Shows as much of the text as there is room for.
  void SetElided(const QString& text) {
    whole_ = text;
    Elide();
  }

 protected:
  void resizeEvent(QResizeEvent* event) override {
    QLabel::resizeEvent(event);
    if (!whole_.isNull()) Elide();
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (OnClick && rect().contains(event->position().toPoint())) OnClick();
  }
  void keyPressEvent(QKeyEvent* event) override {
    const bool activates = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                           event->key() == Qt::Key_Space;
    if (OnClick && activates) {
      if (!event->isAutoRepeat()) OnClick();
    } else {
      QLabel::keyPressEvent(event);
    }
  }
  void paintEvent(QPaintEvent* event) override {
    QLabel::paintEvent(event);
    if (!hasFocus()) return;
    QPainter painter(this);
    QStyleOptionFocusRect option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
  }

 private:
  void Elide() {
    const int room = contentsRect().width() - 2 * indent();
    setText(fontMetrics().elidedText(whole_, Qt::ElideRight, room));
  }
  QString whole_;
};

Qt::Alignment AlignmentOf(const Label& record) {
  const Qt::Alignment vertical = record.WordWrap ? Qt::AlignTop : Qt::AlignVCenter;
  switch (record.Alignment) {
    case TextAlignment::Centre:
      return vertical | Qt::AlignHCenter;
    case TextAlignment::Right:
      return vertical | Qt::AlignRight;
    case TextAlignment::Left:
      break;
  }
  return vertical | Qt::AlignLeft;
}

// Letters narrower than this are lower, too.
constexpr double NarrowestStretch = 0.5;

// The font in which `texts` fit into `room` pixels: `font` itself, a narrower or a smaller one.
QFont Squeezed(QFont font, const QStringList& texts, int room) {
  const auto widest = [&] {
    double pixels = 0;
    const QFontMetricsF metrics(font);
    for (const QString& text : texts) pixels = std::max(pixels, metrics.horizontalAdvance(text));
    return pixels;
  };
  const double scale = room / std::max(widest(), 1.0);
  if (scale >= 1) return font;
  if (scale < NarrowestStretch) {
    const double height = font.pixelSize() * scale / NarrowestStretch;
    font.setPixelSize(std::max(1, static_cast<int>(height)));
  }
  // Hinted letters do not scale evenly.
  for (int percent = 100; percent > 1; --percent) {
    font.setStretch(percent);
    if (widest() <= room) break;
  }
  return font;
}

class LabelView final : public ControlView {
 public:
  LabelView(WindowView& window, Label& record, TextLabel* label)
      : ControlView(window, record, label), record_(record), label_(label) {
    label_->setTextFormat(Qt::PlainText);
    label_->setWordWrap(record.WordWrap);
    label_->setIndent(record.Elided ? ElidedIndentPixels : 0);
    if (record.OnClick) MakeLink();
    QFont font = label_->font();
    if (record.Heading) {
      font.setPixelSize(window.Scaled(HeadingHeightPixels));
      font.setBold(true);
    }
    font.setUnderline(static_cast<bool>(record.OnClick));
    label_->setFont(font);
    if (record.Squeeze) FindArray();
  }

 protected:
  void ReflectCaption() override {
    const QString text = ShownText(record_.Caption);
    if (!record_.Elided) {
      label_->setText(text);
      return;
    }
    label_->SetElided(text);
    if (record_.ToolTip.empty()) label_->setToolTip(text);
  }
  void ReflectOwn() override {
    const Qt::Alignment alignment = AlignmentOf(record_);
    if (label_->alignment() != alignment) label_->setAlignment(alignment);
    if (!array_.empty()) ReflectSqueeze();
  }
  void ReflectColours() override {
    ControlView::ReflectColours();
    if (!record_.OnClick) return;
    QPalette palette = label_->palette();
    palette.setColor(QPalette::WindowText,
                     Readable(QApplication::palette().color(QPalette::Link), Background()));
    label_->setPalette(palette);
  }

 private:
  void MakeLink() {
    label_->setCursor(Qt::PointingHandCursor);
    label_->setFocusPolicy(Qt::StrongFocus);
    label_->OnClick = [this] {
      Post([&record = record_] {
        if (record.OnClick) record.OnClick();
      });
    };
  }

  void FindArray() {
    const auto base = [](const Label& label) { return label.Name.substr(0, label.Name.find('(')); };
    for (const Control* control : Owner().Record().Controls) {
      if (control->Kind != ControlKind::Label) continue;
      const auto& label = static_cast<const Label&>(*control);
      if (label.Squeeze && base(label) == base(record_)) array_.push_back(&label);
    }
  }
  void ReflectSqueeze() {
    std::vector<std::string> captions;
    for (const Label* label : array_) {
      if (label->WidthTwips == record_.WidthTwips) captions.push_back(label->Caption);
    }
    if (!Changed(captions_, captions)) return;
    QStringList texts;
    for (const std::string& caption : captions) texts.push_back(ShownText(caption));
    QFont plain = label_->font();
    plain.setStretch(QFont::AnyStretch);
    plain.setPixelSize(Owner().TopLevel().font().pixelSize());
    label_->setFont(Squeezed(plain, texts, label_->width()));
  }

  Label& record_;
  TextLabel* label_;
  // The labels that are squeezed alike, this one among them; empty: it is not.
  std::vector<const Label*> array_;
  std::optional<std::vector<std::string>> captions_;
};

// Which key a record's handler is asked about; 0: none, the key is the widget's own business.
int KeyOf(const QKeyEvent& event) {
  if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) return KeyEnter;
  if (event.key() == Qt::Key_Backspace) return KeyBackspace;
  const QString text = event.text();
  const bool command = (event.modifiers() & (Qt::ControlModifier | Qt::MetaModifier)) != 0 &&
                       (event.modifiers() & Qt::AltModifier) == 0;
  if (command || text.isEmpty() || !text[0].isPrint()) return 0;
  return text[0].unicode();
}

// An edit field that asks about each letter before it takes it, pasted ones included.
class FilteredEdit final : public QLineEdit {
 public:
  explicit FilteredEdit(QWidget* parent) : QLineEdit(parent) { setAcceptDrops(false); }
  std::function<bool(int key)> Passes;
  // False when nobody listens to Enter here.
  std::function<bool()> OnEnter;
  std::function<void(Qt::FocusReason reason)> OnLeft;

  [[nodiscard]] QString Passing(const QString& letters) const {
    QString passed;
    for (const QChar letter : letters) {
      if (letter.isPrint() && Passes(letter.unicode())) passed += letter;
    }
    return passed;
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->matches(QKeySequence::Paste)) {
      insert(Passing(QApplication::clipboard()->text()));
      return;
    }
    if (event->matches(QKeySequence::Copy) && !hasSelectedText()) {
      // There is more to copy in the window.
      event->ignore();
      return;
    }
    const int key = KeyOf(*event);
    if (key == 0 || !Takes(key, event->isAutoRepeat())) QLineEdit::keyPressEvent(event);
  }
  void inputMethodEvent(QInputMethodEvent* event) override {
    for (const QChar letter : event->commitString()) {
      if (!Passes(letter.unicode())) return;
    }
    QLineEdit::inputMethodEvent(event);
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    // Would paste the selection of another program.
    if (event->button() != Qt::MiddleButton) QLineEdit::mouseReleaseEvent(event);
  }
  void contextMenuEvent(QContextMenuEvent* event) override {
    QMenu* menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (auto* paste = menu->findChild<QAction*>(QStringLiteral("edit-paste"))) {
      paste->disconnect();
      connect(paste, &QAction::triggered, this,
              [this] { insert(Passing(QApplication::clipboard()->text())); });
    }
    menu->popup(event->globalPos());
  }
  void focusOutEvent(QFocusEvent* event) override {
    QLineEdit::focusOutEvent(event);
    if (OnLeft) OnLeft(event->reason());
  }

 private:
  // Whether the field itself has no more to do with the key. Enter that repeats by itself, because
  // it is held down, commits nothing.
  [[nodiscard]] bool Takes(int key, bool repeats) const {
    return key == KeyEnter ? repeats || OnEnter() : !Passes(key);
  }
};

// Whether the user has gone to another control, rather than to a menu or another program.
bool LeftForControl(Qt::FocusReason reason, const QWidget* left) {
  switch (reason) {
    case Qt::MouseFocusReason:
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
      return true;
    case Qt::ActiveWindowFocusReason: {
      const QWidget* now = QApplication::focusWidget();
      return now != nullptr && now != left;
    }
    default:
      return false;
  }
}

class TextBoxView final : public ControlView {
 public:
  TextBoxView(WindowView& window, TextBox& record, FilteredEdit* edit)
      : ControlView(window, record, edit), record_(record), edit_(edit) {
    edit_->Passes = [this](int key) { return KeyPasses(key); };
    edit_->OnLeft = [this](Qt::FocusReason reason) { OnLeft(reason); };
    edit_->OnEnter = [this] { return OnEnter(); };
    connect(edit_, &QLineEdit::textEdited, this, [this](const QString& text) { edited_ = text; });
    connect(edit_, &QLineEdit::textChanged, this, [this](const QString& text) { OnChanged(text); });
  }

  void Forget() override {
    ControlView::Forget();
    text_.reset();
  }

 protected:
  void ReflectOwn() override {
    // The field is ahead of the record while an edit waits.
    if (HasPosted() || !Changed(text_, record_.Text)) return;
    if (const QString text = ToQt(record_.Text); text != edit_->text()) edit_->setText(text);
  }

 private:
  bool KeyPasses(int key) {
    if (Owner().Detached()) return false;
    return !record_.OnKeyPress || record_.OnKeyPress(key);
  }
  // What Enter sets off may wait and close this very window.
  bool OnEnter() {
    if (!record_.OnKeyPress) return false;
    Post([&record = record_] {
      if (record.OnKeyPress) record.OnKeyPress(KeyEnter);
    });
    return true;
  }
  void OnChanged(const QString& text) {
    const QString before = std::exchange(shown_, text);
    const bool edited = std::exchange(edited_, QString()) == text;
    if (MayChange()) {
      Take(edited ? text : PassNew(before, text));
    } else {
      text_.reset();
    }
  }
  // What was not typed into the field has passed no filter yet; in a text that comes as a whole,
  // only what is new has to.
  QString PassNew(const QString& before, const QString& text) {
    const auto front = std::mismatch(before.begin(), before.end(), text.begin(), text.end());
    const auto back = std::mismatch(before.rbegin(), std::make_reverse_iterator(front.first),
                                    text.rbegin(), std::make_reverse_iterator(front.second));
    QString passed = QString(text.begin(), front.second - text.begin()) +
                     edit_->Passing(QString(front.second, back.second.base() - front.second)) +
                     QString(back.second.base(), text.end() - back.second.base());
    if (passed != text) {
      const bool reflecting = std::exchange(Owner().Host().Reflecting, true);
      edit_->setText(passed);
      Owner().Host().Reflecting = reflecting;
    }
    return passed;
  }
  // Behind an Enter that has yet to be heard the text waits, so that Enter commits what stood there
  // when it was pressed.
  void Take(const QString& text) {
    text_ = FromQt(text);
    if (HasPosted()) {
      Post([&record = record_, text = *text_] { record.Text = text; });
    } else {
      record_.Text = *text_;
    }
  }
  void OnLeft(Qt::FocusReason reason) {
    if (!record_.OnLostFocus) return;
    const QPointer<FilteredEdit> edit(edit_);
    // The user was in the field, whatever a handler has made of it since.
    Post(
        [&record = record_, edit, reason] {
          if (record.OnLostFocus && LeftForControl(reason, edit)) record.OnLostFocus();
        },
        Asks::Window);
  }

  TextBox& record_;
  FilteredEdit* edit_;
  std::optional<std::string> text_;
  // The text as it last was in the field, and the last one that was typed or pasted into it.
  QString shown_;
  QString edited_;
};

}  // namespace

ControlView* MakeLabelView(WindowView& window, Label& record, QWidget* parent) {
  return new LabelView(window, record, new TextLabel(parent));
}

ControlView* MakeTextBoxView(WindowView& window, TextBox& record, QWidget* parent) {
  return new TextBoxView(window, record, new FilteredEdit(parent));
}

}  // namespace gainsmith
