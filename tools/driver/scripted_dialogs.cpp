// ScriptedDialogs: fills in and presses what a person would.
#include "driver/scripted_dialogs.h"

#include <QApplication>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include "desktop/record_values.h"

namespace gainsmith::test {
namespace {

template <typename T>
T Next(std::deque<T>& script, T otherwise) {
  if (script.empty()) return otherwise;
  T first = std::move(script.front());
  script.pop_front();
  return first;
}

// By MessageAnswer.
constexpr QMessageBox::StandardButton ButtonOf[] = {QMessageBox::Ok, QMessageBox::Yes,
                                                    QMessageBox::No};

}  // namespace

ScriptedDialogs::ScriptedDialogs() { qApp->installEventFilter(this); }

ScriptedDialogs::~ScriptedDialogs() { qApp->removeEventFilter(this); }

bool ScriptedDialogs::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::Show) return false;
  auto* dialog = qobject_cast<QDialog*>(watched);
  if (dialog == nullptr) return false;
  QMetaObject::invokeMethod(
      dialog, [this, dialog] { Answer(dialog); }, Qt::QueuedConnection);
  return false;
}

void ScriptedDialogs::Answer(QDialog* dialog) {
  if (OnDialog) OnDialog();
  if (auto* box = qobject_cast<QMessageBox*>(dialog)) AnswerMessage(*box);
  if (auto* files = qobject_cast<QFileDialog*>(dialog)) AnswerFile(*files);
  if (auto* colours = qobject_cast<QColorDialog*>(dialog)) AnswerColour(*colours);
}

void ScriptedDialogs::AnswerMessage(QMessageBox& box) {
  Messages.push_back({box.text().toStdString(), box.windowTitle().toStdString()});
  QAbstractButton* button = box.defaultButton();
  if (!Answers.empty()) {
    button = box.button(ButtonOf[static_cast<int>(Next(Answers, MessageAnswer::Ok))]);
  }
  if (button == nullptr) button = box.buttons().constFirst();
  button->click();
}

void ScriptedDialogs::AnswerFile(QFileDialog& dialog) {
  const std::string path = Next(Files, std::string());
  if (path.empty()) {
    dialog.reject();
    return;
  }
  dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
      ->setText(QString::fromStdString(path));
  const auto accepts = dialog.acceptMode() == QFileDialog::AcceptOpen ? QDialogButtonBox::Open
                                                                      : QDialogButtonBox::Save;
  dialog.findChild<QDialogButtonBox*>()->button(accepts)->click();
}

void ScriptedDialogs::AnswerColour(QColorDialog& dialog) {
  const auto colour = Next(Colours, std::optional<Colour>());
  if (!colour) {
    dialog.reject();
    return;
  }
  dialog.setCurrentColor(*FixedColour(*colour));
  dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
}

}  // namespace gainsmith::test
