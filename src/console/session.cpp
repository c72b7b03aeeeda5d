#include "console/session.h"

#include <QCoreApplication>
#include <algorithm>
#include <utility>

#include "console/port_report.h"
#include "host/qt_text.h"
#include "platform/common_texts.h"

namespace gainsmith {
namespace {

// A read of settings gives up by itself before; a download goes on from setting to setting.
constexpr std::int64_t MostSilenceMs = 12'000;

bool IsComName(const std::string& port) {
  return port.size() <= 5 && port.starts_with("COM") &&
         port.find_first_not_of("0123456789", 3) == std::string::npos;
}

std::string MotionName(Register command, int word) {
  constexpr int Run = 2;
  if (command == Register::VelocityCommand) return "the velocity test";
  if (command == Register::CurrentStep) return "the current step";
  return word == Run ? "the position test" : "a jog";
}

}  // namespace

Session::Session(const Options& options, Terminal& terminal)
    : world(QCoreApplication::applicationDirPath().toStdString(),
            IsComName(options.Port) ? "" : options.Port),
      tool(world),
      options_(options),
      terminal_(terminal),
      interrupts_([this] { Hear(); }) {
  world.OnMessage = [this](const Message& message) { return Answer(message); };
  world.OnIdle = [this] { Idle(); };
  world.OnFrame = [this](const std::string& frame) {
    nothingSent_ = false;
    if (frameLog_ != nullptr) std::fprintf(frameLog_, "%s\n", frame.c_str());
  };
  tool.Start();
  if (options_.FrameLog.empty()) return;
  frameLog_ = std::fopen(options_.FrameLog.c_str(), "w");
  if (frameLog_ == nullptr) {
    End(ExitStatus::Trouble, options_.FrameLog + " could not be written.");
  } else {
    // Whoever reads along sees each frame when it has gone out.
    std::setvbuf(frameLog_, nullptr, _IOLBF, 0);
  }
}

Session::~Session() {
  const std::string notice = tool.mdiForm1.lblNotice.Caption;
  if (!notice.empty()) terminal_.Note(notice);
  if (const int resends = tool.link.Known().Resends; resends > 0) {
    terminal_.Note("Frames sent again: " + std::to_string(resends) +
                   " (noise on the line, or a busy machine)");
  }
  world.EndProgram();
  CloseFrameLog();
}

void Session::CloseFrameLog() {
  if (frameLog_ == nullptr) return;
  const bool failed = std::ferror(frameLog_) != 0;
  if ((std::fclose(std::exchange(frameLog_, nullptr)) != 0) || failed) {
    End(ExitStatus::Trouble, "The list of frames is not whole: " + options_.FrameLog);
  }
}

// --- Steps.

bool Session::ChooseConnection() {
  Form2& dialog = tool.form2;
  if (!Press(tool.mdiForm1.mnuConnect)) return false;
  const std::string port = IsComName(options_.Port) ? options_.Port : "COM1";
  return Choose(dialog.Combo1[Form2::PortList], port, "--port") &&
         Choose(dialog.Combo1[Form2::BaudList], options_.Baud, "--baud") &&
         Choose(dialog.Combo1[Form2::DeviceList], options_.Device, "--device");
}

bool Session::Connect() {
  if (!ChooseConnection()) return false;
  openedAtMs_ = world.NowMs();
  connecting_ = true;
  Press(tool.form2.openPort);
  connecting_ = false;
  terminal_.EndProgress();
  if (Ended()) return false;
  if (!world.IsPortOpen()) End(ExitStatus::LostLink, "The connection was closed.");
  return !Ended();
}

bool Session::Enter(TextBox& field, const std::string& text) {
  if (Ended()) return false;
  nothingSent_ = true;
  field.Text.clear();
  for (const char letter : text) {
    if (field.OnKeyPress && !field.OnKeyPress(static_cast<unsigned char>(letter))) {
      End(ExitStatus::Refused, "The field " + field.AccessibleName + " takes no \"" + text + "\"");
      return false;
    }
    field.Text += letter;
  }
  if (field.OnLostFocus) field.OnLostFocus();
  return !Ended();
}

bool Session::EnterGiven(const std::string& name, TextBox& field) {
  const std::string* text = options_.Field(name);
  return text == nullptr ? !Ended() : Enter(field, *text);
}

bool Session::Choose(ComboBox& list, const std::string& text, const std::string& what) {
  if (Ended()) return false;
  const auto entry = std::find_if(list.Items.begin(), list.Items.end(),
                                  [&](const ListItem& item) { return item.Text == text; });
  if (entry == list.Items.end()) {
    End(ExitStatus::Refused, what + " can't be " + text + ": it is one of " +
                                 list.Items.front().Text + " to " + list.Items.back().Text);
    return false;
  }
  list.Choose(static_cast<int>(entry - list.Items.begin()));
  if (list.OnClick) list.OnClick();
  return !Ended();
}

bool Session::Press(Button& button) {
  if (Ended()) return false;
  nothingSent_ = true;
  button.OnClick();
  nothingSent_ = false;
  return !Ended();
}

bool Session::Press(MenuItem& item) {
  if (Ended()) return false;
  if (!item.Enabled) {
    End(ExitStatus::Trouble, "The drive is in a mode in which this can't be done.");
    return false;
  }
  item.OnClick();
  return !Ended();
}

bool Session::WaitFor(const std::function<bool()>& done) {
  constexpr int LookMs = 1000;
  while (!done() && !Ended() && !world.Ended()) world.PumpEvents(world.NowMs() + LookMs);
  return !Ended();
}

bool Session::Consent(const std::string& question) {
  if (Ended() || options_.Yes) return !Ended();
  if (!terminal_.CanAsk()) {
    End(ExitStatus::Trouble, question + "\nNobody is there to answer. Say --yes to go on.");
  } else if (!terminal_.Ask(question, interrupts_.Handle())) {
    if (Interrupts::Pending()) {
      End(ExitStatus::Interrupted, "Interrupted. Nothing was done.");
    } else {
      End(ExitStatus::Trouble, "Nothing was done.");
    }
  }
  return !Ended();
}

// --- Messages.

void Session::Expect(const std::string& text, MessageAnswer answer) {
  expected_.push_back({text, answer, false});
}

void Session::ExpectQuestion(const std::string& text) {
  expected_.push_back({text, MessageAnswer::Yes, true});
}

MessageAnswer Session::Answer(const Message& message) {
  const auto known =
      std::find_if(expected_.begin(), expected_.end(),
                   [&](const Expectation& expected) { return expected.Text == message.Text; });
  if (known != expected_.end()) {
    const Expectation expected = *known;
    expected_.erase(known);
    if (expected.AskUser) return Consent(message.Text) ? MessageAnswer::Yes : MessageAnswer::No;
    if (message.Buttons == MessageButtons::Ok) terminal_.Note(message.Text);
    return expected.Answer;
  }
  if (message.Text == LostLinkMessage().Text) {
    End(ExitStatus::LostLink, message.Text + "\n" + LastKnownMotion());
  } else if (connecting_) {
    EndUnconnected(message.Text);
  } else if (nothingSent_) {
    End(ExitStatus::Refused, message.Text);
  } else {
    End(ExitStatus::Trouble, message.Text);
  }
  return message.Default;
}

void Session::EndUnconnected(const std::string& message) {
  if (!nothingSent_) {
    End(ExitStatus::LostLink,
        message + "\n" + options_.Port + " is open, but no drive answers at " + options_.Baud +
            " baud as device " + options_.Device +
            ". To look for one: gainsmithctl doctor --scan --port " + options_.Port);
    return;
  }
  const QString device = world.DeviceOf(tool.link.PortNumber);
  End(ExitStatus::Trouble, message + "\n" + options_.Port + ": " + WhyNotOpened(device));
}

void Session::End(ExitStatus status, const std::string& trouble) {
  terminal_.Trouble(trouble);
  if (status_ == ExitStatus::Done) status_ = status;
}

// --- What goes on beside the script.

void Session::Idle() {
  if (Ended() && !interrupted_ && OnEnd) std::exchange(OnEnd, {})();
  if (interrupted_ && AfterInterrupt) {
    const auto after = std::exchange(AfterInterrupt, {});
    if (!after()) AfterInterrupt = after;
  }
  const MDIForm1& main = tool.mdiForm1;
  if (main.prgActivity.Visible) {
    terminal_.Progress(main.lblActivity.Caption, main.prgActivity.Value, main.prgActivity.Max);
  }
  if (!tool.shell.BulkTransferRunning || !world.IsPortOpen() || closing_) return;
  const std::int64_t heardMs = tool.link.Known().AnsweredAtMs.value_or(openedAtMs_);
  if (world.NowMs() - heardMs < MostSilenceMs) return;
  End(ExitStatus::LostLink, LostLinkMessage().Text + "\n" + LastKnownMotion());
  CloseConnection();
}

void Session::Hear() {
  // A second one would press the button that the first one has turned into Start.
  if (interrupted_) return;
  interrupted_ = true;
  End(ExitStatus::Interrupted, "Interrupted.");
  if (OnInterrupt) {
    OnInterrupt();
  } else {
    CloseConnection();
  }
}

void Session::CloseConnection() {
  if (closing_) return;
  closing_ = true;
  if (world.IsPortOpen() && tool.form2.openPort.Enabled) {
    tool.form2.openPort.OnClick();
  } else {
    world.EndProgram();
  }
}

void Session::TellStop(Register command) {
  const auto& commands = tool.link.Known().Commands;
  const auto last = commands.find(command);
  if (last == commands.end()) {
    terminal_.Trouble("The motor was not started.");
  } else if (last->second.Word != 0) {
    terminal_.Trouble("No stop word went out. " + LastKnownMotion());
  } else if (last->second.Acknowledged) {
    terminal_.Trouble("The drive took the stop word.");
  } else {
    terminal_.Trouble("The drive did not acknowledge the stop word: the motor may still turn.");
  }
}

std::string Session::LastKnownMotion() const {
  std::string text;
  for (const auto& [command, last] : tool.link.Known().Commands) {
    if (last.Word == 0 && last.Acknowledged) continue;
    text += text.empty() ? "" : " ";
    text += last.Word == 0 ? "The drive did not acknowledge the stop word"
                           : "It was last told to run " + MotionName(command, last.Word) +
                                 (last.Acknowledged ? "" : ", and did not acknowledge that");
    text += ": the motor may still turn. Use the emergency stop.";
  }
  return text.empty() ? "No motion was under way by this program's doing." : text;
}

}  // namespace gainsmith
