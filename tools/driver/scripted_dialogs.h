// ScriptedDialogs: answers message boxes and the file and colour dialogs as they come up.
#pragma once

#include <QObject>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/world.h"

class QColorDialog;
class QDialog;
class QFileDialog;
class QMessageBox;

namespace gainsmith::test {

// Lives on the windows' thread.
class ScriptedDialogs : private QObject {
 public:
  ScriptedDialogs();
  ~ScriptedDialogs() override;

  // Answers to come, in order. Without one a message gets its default and a dialog is cancelled;
  // so does an empty path.
  std::deque<MessageAnswer> Answers;
  std::deque<std::string> Files;
  std::deque<std::optional<Colour>> Colours;
  // Called while a dialog is on the screen, before it is answered.
  std::function<void()> OnDialog;
  // Message boxes so far.
  std::vector<Message> Messages;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Answer(QDialog* dialog);
  void AnswerMessage(QMessageBox& box);
  void AnswerFile(QFileDialog& dialog);
  void AnswerColour(QColorDialog& dialog);
};

}  // namespace gainsmith::test
