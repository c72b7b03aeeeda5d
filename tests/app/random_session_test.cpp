// Random sessions: a user who presses anything within reach at any moment, before a line that
// fails at random. At each quiet moment screen, table and drive agree and no motor turns unasked;
// whatever happened, the tool comes to rest and works again.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "bench.h"
#include "golden.h"
#include "journal.h"
#include "session_oracle.h"

namespace gainsmith::test {
namespace {

constexpr std::int64_t SessionMs = 300'000;
constexpr std::int64_t LongestPauseMs = 1500;
// A handler that waits, inside another, and so on: no user nests deeper.
constexpr int DeepestNesting = 8;
// With the ticks, and keys that repeat by themselves.
constexpr int DeepestWait = DeepestNesting + 6;

enum class LineKind { Good, Random, OneInN, GlitchAtOpening, KindCount };

class RandomUser {
 public:
  RandomUser(Bench& bench, SessionOracle& oracle, std::set<Button*>& held, unsigned seed,
             LineKind line)
      : bench_(bench), oracle_(oracle), held_(held), random_(seed), line_(line) {
    bench_.world.OnMessage = [this](const Message& message) { Answer(message); };
    if (line_ == LineKind::OneInN) {
      bench_.device.Drive.Inject(sim::Fault::DropNth, sim::Hits::Every(3 + Below(20)));
    }
  }

  void Play() {
    Schedule();
    bench_.world.RunFor(SessionMs);
    stopped_ = true;
    bench_.world.OnMessage = {};
    bench_.world.Answers.clear();
    bench_.world.ChosenFiles.clear();
  }

 private:
  using Choices = std::vector<std::function<void()>>;

  int Below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  template <typename T>
  const T& OneOf(const std::vector<T>& all) {
    return all[static_cast<std::size_t>(Below(static_cast<int>(all.size())))];
  }

  void Schedule() {
    bench_.world.At(1 + Below(LongestPauseMs), [this] {
      if (stopped_) return;
      Schedule();
      if (depth_ == 0 && !bench_.tool.link.ErrandUnderWay()) oracle_.Look();
      if (depth_ == DeepestNesting) return;
      ++depth_;
      if (line_ == LineKind::Random && Below(6) == 0) {
        SpoilTheLine();
      } else {
        Act();
      }
      --depth_;
    });
  }

  void SpoilTheLine() {
    constexpr int Kinds = static_cast<int>(sim::FaultCount);
    const int kind = Below(2 * Kinds);
    if (kind >= Kinds) return bench_.Repair();
    // Nobody can see through these: a sound reply with another register's value, and an echo that
    // acknowledges a write beside a drive that did not hear it.
    const auto fault = static_cast<sim::Fault>(kind);
    if (fault == sim::Fault::WrongRegister || fault == sim::Fault::Echo) return;
    bench_.device.Drive.Inject(fault, sim::Hits::Next(1 + Below(40)));
  }

  // Yes or no by chance and in its own time, but the program goes on.
  void Answer(const Message& message) {
    const bool exit = message.Text == "Exit Gainsmith for KVT518?";
    bench_.world.Answers = {!exit && Below(2) == 0 ? MessageAnswer::Yes : MessageAnswer::No};
    if (Below(3) == 0) bench_.world.Pass(Below(20'000));
    if (!held_.empty() && Below(2) == 0) LetGo(**held_.begin());
  }

  void LetGo(Button& button) {
    if (held_.erase(&button) > 0) bench_.user.Release(button);
  }

  void Act() {
    const std::vector<std::string> paths{"", "/home/a.tvd", "/home/b.tvd", "/program/default.ini"};
    const auto outcome = static_cast<ChosenFile::Outcome>(Below(3));
    bench_.world.ChosenFiles = {{outcome, OneOf(paths)}};
    Choices choices;
    if (bench_.world.ModalWindow() == nullptr) CollectCommands(choices);
    CollectTests(choices);
    // Windows other than the main one draw a user's hand most of the time.
    for (Window* window : bench_.world.LoadedWindows()) {
      if (window == &bench_.tool.mdiForm1 || !bench_.user.CanReach(*window)) continue;
      for (Control* control : window->Controls) {
        if (bench_.user.CanReach(*control)) choices.push_back([this, control] { Use(*control); });
      }
      choices.push_back([this, window] { bench_.user.Close(*window); });
    }
    if (choices.empty()) return;
    const std::size_t open = bench_.world.LoadedWindows().size();
    if (line_ == LineKind::GlitchAtOpening && open == 1) {
      bench_.device.Drive.Inject(sim::Fault::DropNth, sim::Hits::Only(1 + Below(30)));
    }
    OneOf(choices)();
  }

  // What the windows are for, as often as all the rest.
  void CollectTests(Choices& choices) {
    Form3& position = bench_.tool.form3;
    velocityModeTune& velocity = bench_.tool.velocityMode;
    const auto offer = [&](Control& control) {
      if (!bench_.user.CanReach(control)) return;
      for (int i = 0; i < 8; ++i) choices.push_back([this, &control] { Use(control); });
    };
    const auto offerWindow = [&](MenuItem& item) {
      if (!item.OnClick || !bench_.user.CanReach(item)) return;
      for (int i = 0; i < 8; ++i) choices.push_back([this, &item] { bench_.user.Click(item); });
    };
    offerWindow(bench_.tool.mdiForm1.mnuPositionLoop);
    if (bench_.tool.benchMenu) offerWindow(bench_.tool.benchMenu->mnuVelocityLoop);
    offer(position.Command1[Form3::MainStart]);
    offer(position.Command2);
    offer(position.Command3);
    offer(velocity.Command1);
    for (const velocityModeTune::Gain& gain : velocityModeTune::Gains) {
      offer(velocity.Text1[gain.Text]);
    }
  }

  void CollectCommands(Choices& choices) {
    MDIForm1& main = bench_.tool.mdiForm1;
    for (MenuItem* menu : main.Menus) {
      for (MenuItem* item : menu->Items) {
        if (!item->OnClick || !bench_.user.CanReach(*item)) continue;
        choices.push_back([this, item] { bench_.user.Click(*item); });
      }
    }
    for (ToolButton* button : main.ToolButtons) {
      if (button->Enabled) choices.push_back([this, button] { bench_.user.Click(*button); });
    }
  }

  void Use(Control& control) {
    switch (control.Kind) {
      case ControlKind::Button:
        return UseButton(static_cast<Button&>(control));
      case ControlKind::CheckBox:
        return bench_.user.Click(static_cast<CheckBox&>(control));
      case ControlKind::OptionButton:
        return bench_.user.Click(static_cast<OptionButton&>(control));
      case ControlKind::ComboBox:
        return UseList(static_cast<ComboBox&>(control));
      case ControlKind::TextBox:
        return UseField(static_cast<TextBox&>(control));
      case ControlKind::PictureBox:
        return UsePicture(static_cast<PictureBox&>(control));
      default:
        break;
    }
  }

  void UseList(ComboBox& list) {
    const int items = static_cast<int>(list.Items.size());
    if (items > 0) bench_.user.Choose(list, Below(items));
  }

  void UseButton(Button& button) {
    if (button.OnPress && button.OnRelease) {
      bench_.world.At(1 + Below(2000), [this, &button] { LetGo(button); });
      held_.insert(&button);
      bench_.user.Press(button);
    } else {
      bench_.user.Click(button);
    }
  }

  void UseField(TextBox& field) {
    const std::vector<std::string> good{"10", "55", "100", "300", "400"};
    const std::vector<std::string> bad{"",      "abc",   "-1",    "0",   "0.5",
                                       "65535", "65536", "1e300", "nan", "65535.499"};
    // A field that was spoilt keeps its window from starting anything: it is mended soon.
    Write(field, Below(8) == 0 ? OneOf(bad) : OneOf(good));
    bench_.world.At(3000, [this, &field, number = OneOf(good)] {
      if (bench_.user.CanReach(field)) Write(field, number);
    });
    switch (Below(4)) {
      case 0:
        return HoldEnter(field);
      case 1:
        return bench_.user.Leave(field);
      default:
        return Enter(field);
    }
  }

  void Write(TextBox& field, const std::string& text) {
    oracle_.Edited(field);
    bench_.user.Paste(field, text);
  }
  void Enter(TextBox& field) {
    oracle_.Committed(field);
    bench_.user.Enter(field);
  }

  void HoldEnter(TextBox& field) {
    constexpr int RepeatMs = 33;
    for (int i = 1; i <= 30; ++i) {
      bench_.world.At(i * RepeatMs, [this, &field] {
        if (!stopped_ && bench_.user.CanReach(field)) Enter(field);
      });
    }
    Enter(field);
  }

  void UsePicture(PictureBox& picture) {
    if (!picture.OnMouseDown) return;
    const auto at = [&](float start, float extent) {
      return start + extent * static_cast<float>(Below(120) - 10) / 100;
    };
    const PictureScale& s = picture.Scale;
    const float fromX = at(s.Left, s.Width);
    const float fromY = at(s.Top, s.Height);
    const float toX = at(s.Left, s.Width);
    const float toY = at(s.Top, s.Height);
    bench_.user.Drag(picture, fromX, fromY, toX, toY, Below(4) == 0 ? RightButton : LeftButton);
  }

  Bench& bench_;
  SessionOracle& oracle_;
  std::set<Button*>& held_;
  std::mt19937 random_;
  LineKind line_;
  int depth_ = 0;
  bool stopped_ = false;
};

void CloseAllWindows(Bench& bench) {
  for (int tries = 0; tries < 60 && bench.world.LoadedWindows().size() > 1; ++tries) {
    const std::vector<Window*> windows = bench.world.LoadedWindows();
    for (Window* window : windows) {
      if (window == &bench.tool.mdiForm1 || !bench.user.CanReach(*window)) continue;
      // What a window that refuses to close wants first.
      for (Control* control : window->Controls) {
        const bool stops = control->Kind == ControlKind::Button && control->Caption == "Stop";
        if (stops) (void)bench.user.TryClick(*static_cast<Button*>(control));
      }
      if (bench.user.CanReach(*window)) bench.user.Close(*window);
    }
    bench.world.RunFor(1000);
    // A dialog that is hidden, not closed.
    bench.world.Unload(bench.tool.form2);
  }
}

void ExpectNothingLeft(Bench& bench) {
  Tool& tool = bench.tool;
  bench.ExpectAtRest();
  std::string open;
  for (const Window* window : bench.world.LoadedWindows()) open += window->Name + " ";
  EXPECT_EQ(open, "MDIForm1 ");
  EXPECT_FALSE(tool.shell.ChildWindowOpen);
  for (const bool mark : tool.shell.WindowOpenFlags) EXPECT_FALSE(mark);
  EXPECT_NE(tool.mdiForm1.Pointer, MousePointer::Hourglass);
  if (bench.world.IsPortOpen()) return;
  for (const ToolButton* button : tool.mdiForm1.ToolButtons) {
    EXPECT_FALSE(button->Enabled) << button->ToolTip;
  }
}

// A connection from the beginning, and a window that reads.
void ExpectToWork(Bench& bench) {
  Tool& tool = bench.tool;
  if (bench.world.IsPortOpen()) {
    bench.Connect();
    EXPECT_FALSE(bench.world.IsPortOpen());
    bench.user.Close(tool.form2);
  }
  bench.TakeMessages();
  bench.TakeFrames();
  bench.Connect();
  EXPECT_EQ(bench.TakeFrames().size(), 3U + 44U);
  bench.user.Click(tool.mdiForm1.MnuCurrentLoop);
  EXPECT_TRUE(tool.form1.Visible);
  EXPECT_EQ(bench.TakeFrames(), (Texts{"R 0", "R 1"}));
  bench.user.Close(tool.form1);
  EXPECT_EQ(bench.TakeMessages(), Texts{});
}

TEST(RandomSession, KeepsItsPromisesComesToRestAndWorksAgain) {
  constexpr unsigned Seeds = 60;
  constexpr std::int64_t ListedEveryMs = 30'000;
  Texts lines;
  int tests = 0;
  int jogs = 0;
  int gains = 0;
  for (unsigned seed = 1; seed <= Seeds; ++seed) {
    const auto line = static_cast<LineKind>(seed % static_cast<unsigned>(LineKind::KindCount));
    SCOPED_TRACE("seed " + std::to_string(seed));
    sim::DriveOptions options;
    options.Seed = seed;
    Bench bench(options, seed % 8 < 4 ? Edition::ServiceBench : Edition::Standard);
    options.Address = 2;
    DriveDevice second(options);
    Bus bus({&bench.device, &second});
    bench.world.Devices[1] = &bus;
    bench.Connect();
    // Outlive the session: what it left in the script comes due in the calls below.
    std::set<Button*> held;
    SessionOracle oracle(bench, {{1, &bench.device.Drive}, {2, &second.Drive}}, held);
    RandomUser user(bench, oracle, held, seed, line);
    Journal journal(bench);
    for (std::int64_t ms = ListedEveryMs; ms <= SessionMs; ms += ListedEveryMs) {
      bench.world.At(ms, [&, name = std::to_string(seed) + ", " + std::to_string(ms)] {
        lines.push_back("seed " + name + " ms" + journal.Line());
      });
    }
    user.Play();
    EXPECT_LE(bench.world.DeepestWait, DeepestWait);

    bench.Repair();
    bench.world.RunFor(3000);
    CloseAllWindows(bench);
    ExpectNothingLeft(bench);
    if (line == LineKind::Good) {
      // Whatever was pressed in which wait, no command to move goes out behind a stop.
      const std::vector<int> commands = bench.world.Log.Writes(9);
      EXPECT_TRUE(commands.empty() || commands.back() == 0);
    }
    tests += oracle.Tests;
    jogs += oracle.Jogs;
    gains += oracle.Gains;
    ExpectToWork(bench);
    if (testing::Test::HasFailure()) return;
  }
  ExpectKnown(lines, "sessions.txt");
  EXPECT_GT(tests, 2 * static_cast<int>(Seeds));
  EXPECT_GT(jogs, 2 * static_cast<int>(Seeds));
  EXPECT_GT(gains, 10 * static_cast<int>(Seeds));
}

}  // namespace
}  // namespace gainsmith::test
