// ScriptedDialogs: fills in and presses what a person would.
#include "support/scripted_dialogs.h"

#include <QApplication>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace gainsmith::test {
namespace {

template <typename T>
T Next(std::deque<T>& script, T otherwise) {
  if (script.empty()) return otherwise;
  T first = std::move(script.front());
  script.pop_front();
  return first;
}

QMessageBox::StandardButton ButtonOf(MessageAnswer answer) {
  switch (answer) {
    case MessageAnswer::Ok:
      return QMessageBox::Ok;
    case MessageAnswer::Yes:
      return QMessageBox::Yes;
    case MessageAnswer::No:
      break;
  }
  return QMessageBox::No;
}

}  // namespace

ScriptedDialogs::ScriptedDialogs() { qApp->installEventFilter(this); }

ScriptedDialogs::~ScriptedDialogs() { qApp->removeEventFilter(this); }

bool ScriptedDialogs::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::Show) return false;
  const bool asks = qobject_cast<QMessageBox*>(watched) != nullptr ||
                    qobject_cast<QFileDialog*>(watched) != nullptr ||
                    qobject_cast<QColorDialog*>(watched) != nullptr;
  if (!asks) return false;
  auto* dialog = static_cast<QWidget*>(watched);
  QMetaObject::invokeMethod(
      dialog, [this, dialog] { Answer(dialog); }, Qt::QueuedConnection);
  return false;
}

void ScriptedDialogs::Answer(QWidget* dialog) {
  if (OnDialog) OnDialog(*dialog);
  if (auto* box = qobject_cast<QMessageBox*>(dialog)) AnswerMessage(*box);
  if (auto* files = qobject_cast<QFileDialog*>(dialog)) AnswerFile(*files);
  if (auto* colours = qobject_cast<QColorDialog*>(dialog)) AnswerColour(*colours);
}

void ScriptedDialogs::AnswerMessage(QMessageBox& box) {
  Messages.push_back({box.text().toStdString(), box.windowTitle().toStdString()});
  QAbstractButton* button = box.defaultButton();
  if (button == nullptr) button = box.buttons().constFirst();
  if (!Answers.empty()) {
    const MessageAnswer answer = Next(Answers, MessageAnswer::Ok);
    if (QAbstractButton* wanted = box.button(ButtonOf(answer))) button = wanted;
  }
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
  dialog.setCurrentColor(QColor(static_cast<int>(*colour & 0xFFU),
                                static_cast<int>(*colour >> 8U & 0xFFU),
                                static_cast<int>(*colour >> 16U & 0xFFU)));
  dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
}

}  // namespace gainsmith::test
