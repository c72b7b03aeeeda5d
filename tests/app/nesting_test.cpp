// Handlers inside waits: what a user can do while a command runs, at any of its moments.

#include "bench.h"
#include "simulator/bank/registers.h"
#include "transfers.h"

namespace gainsmith::test {
namespace {

constexpr const char* ExitQuestion = "Exit Gainsmith for KVT518?";
constexpr const char* Downloaded = "New configurations have been downloaded to drive successfully";

struct Undisturbed {
  explicit Undisturbed(const Transfer& command) {
    ConnectedBench bench;
    const std::int64_t start = bench.world.NowMs();
    command.Give(bench);
    LastsMs = bench.world.NowMs() - start;
    Frames = bench.TakeFrames();
    Messages = bench.TakeMessages();
  }
  Texts Frames, Messages;
  std::int64_t LastsMs = 0;
};

// The scope and its first cycle.
const Transfer Cycle{"scope", [](Bench& bench) {
                       bench.user.Click(bench.tool.mdiForm1.mnuScope);
                       (void)bench.user.TryClick(bench.tool.form5.Command1);
                       bench.world.RunFor(5000);
                     }};

TEST(Nesting, TheExitQuestionAtAnyMomentOfATransferOrACycle) {
  std::vector<Transfer> commands(std::begin(Transfers), std::end(Transfers));
  commands.push_back(Cycle);
  for (const Transfer& command : commands) {
    const Undisturbed whole(command);
    for (std::int64_t delayMs = 1; delayMs < whole.LastsMs;
         delayMs += command.Name == Cycle.Name ? 190 : 487) {
      SCOPED_TRACE(std::string(command.Name) + " after " + std::to_string(delayMs));
      const auto give = [&](Bench& bench, MessageAnswer answer) {
        bench.world.At(delayMs, [&bench, answer] {
          bench.world.Answers.push_back(answer);
          bench.world.Unload(bench.tool.mdiForm1);
        });
        command.Give(bench);
      };
      ConnectedBench stays;
      give(stays, MessageAnswer::No);
      EXPECT_EQ(stays.TakeFrames(), whole.Frames);
      EXPECT_EQ(stays.TakeMessages().size(), whole.Messages.size() + 1);
      stays.ExpectAtRest();

      ConnectedBench ends;
      const std::int64_t start = ends.world.NowMs();
      give(ends, MessageAnswer::Yes);
      EXPECT_TRUE(ends.world.Ended());
      EXPECT_FALSE(ends.world.IsPortOpen());
      EXPECT_EQ(ends.world.NowMs(), start + delayMs) << "nothing waits behind the end";
      EXPECT_EQ(ends.TakeMessages().back(), ExitQuestion) << "nothing is told behind the end";
      const Texts sent = ends.TakeFrames();
      ASSERT_LE(sent.size(), whole.Frames.size());
      EXPECT_TRUE(std::equal(sent.begin(), sent.end(), whole.Frames.begin()));
    }
  }
}

// The properties window stands beside the main one: its OK writes registers of its own.
TEST(Nesting, APropertyChangedAtAnyMomentOfADownloadSpoilsNeither) {
  const Undisturbed whole(Download);
  for (std::int64_t delayMs = 1; delayMs < whole.LastsMs; delayMs += 83) {
    SCOPED_TRACE(delayMs);
    ConnectedBench bench;
    bench.user.Click(bench.tool.mdiForm1[Tool1::Properties]);
    bench.TakeFrames();
    bench.tool.parameters[Slot::CurrentKp] = 777;
    bench.tool.parameters[Slot::Resistance] = 1.25F;
    bench.world.At(delayMs, [&] { bench.user.Click(bench.tool.sysConfig.cmdOK); });
    Download.Give(bench);
    EXPECT_EQ(bench.TakeMessages().back(), Downloaded);
    EXPECT_EQ(bench.device.Drive.Registers()[sim::Reg::CurrentKp], 777);
    EXPECT_EQ(bench.device.Drive.Registers().Values[0xF7], 125);
    EXPECT_FALSE(bench.tool.sysConfig.Loaded) << "its own writes were taken";
    EXPECT_EQ(bench.tool.mdiForm1.lblNotice.Caption, "");
    bench.ExpectAtRest();
  }
}

// What the window would read is about to change.
TEST(Nesting, NoWindowOpensBesideAGainThatIsStillOnItsWay) {
  Bench bench({}, Edition::ServiceBench);
  bench.Connect();
  Tool& tool = bench.tool;
  bench.user.Click(tool.benchMenu->mnuVelocityLoop);
  TextBox& gain = tool.velocityMode.Text1[velocityModeTune::Vp];
  bench.user.Type(gain, "77");
  bench.device.Drive.Inject(sim::Fault::Silent, sim::Hits::Next(2));
  bench.world.At(20, [&] { bench.user.Close(tool.velocityMode); });
  bench.world.At(40, [&] { bench.user.Click(tool.mdiForm1.mnuPositionLoop); });
  bench.TakeFrames();
  bench.user.Enter(gain);
  EXPECT_EQ(bench.TakeFrames(), (Texts{"W 31=77", "W 31=77", "W 31=77"}));
  EXPECT_EQ(tool.mdiForm1.Pointer, MousePointer::Hourglass);
  bench.world.RunFor(100);
  EXPECT_EQ(tool.form3.Text1[Form3::VelocityKp].Text, "77");
}

// Drive, Connect, Close: the way out of a transfer, and the only one.
TEST(Nesting, AWindowAskedForAgainWhileItLoadsIsNotSeenHalfLoaded) {
  ConnectedBench bench;
  const Form3& window = bench.tool.form3;
  bench.world.At(300, [&] {
    bench.world.Show(bench.tool.form3);
    EXPECT_TRUE(window.Loaded && !window.Visible);
  });
  bench.user.Click(bench.tool.mdiForm1.mnuPositionLoop);
  EXPECT_TRUE(window.Visible);
}

TEST(Nesting, CloseEndsATransferAtAnyMoment) {
  for (const Transfer& command : Transfers) {
    const Undisturbed whole(command);
    for (std::int64_t delayMs = 1; delayMs < whole.LastsMs; delayMs += 487) {
      SCOPED_TRACE(std::string(command.Name) + " after " + std::to_string(delayMs));
      ConnectedBench bench;
      MDIForm1& main = bench.tool.mdiForm1;
      Form2& dialog = bench.tool.form2;
      main.CurrentConfigFile = main.Caption = "before";
      std::size_t frames = 0;
      std::size_t messages = 0;
      bench.world.At(delayMs, [&] {
        bench.user.Click(main.mnuConnect);
        // Another drive is not for the second half of a transfer.
        bench.user.Choose(dialog.Combo1[Form2::DeviceList], 5);
        EXPECT_EQ(dialog.Combo1[Form2::DeviceList].Text, "1");
        bench.user.Click(dialog.openPort);
        bench.user.Click(dialog.openPort);
        EXPECT_FALSE(bench.world.IsPortOpen()) << "no opening before the transfer has ended";
        frames = bench.world.Log.Frames().size();
        messages = bench.world.Messages.size();
      });
      command.Give(bench);
      EXPECT_EQ(bench.world.Log.Frames().size(), frames);
      EXPECT_EQ(bench.world.Messages.size(), messages);
      EXPECT_EQ(main.CurrentConfigFile + main.Caption, "beforebefore");
      EXPECT_TRUE(main.lblNotice.Caption.starts_with("The connection was closed while "));
      EXPECT_FALSE(main.mnuFileOpen.Enabled || main.ErrCheck.Enabled);
      bench.world.RunFor(100);
      bench.ExpectAtRest();
      EXPECT_FALSE(bench.tool.form8.Loaded && bench.tool.form8.Frame1.Visible);

      bench.user.Click(dialog.openPort);
      EXPECT_EQ(main.lblConnection.Caption, "Connected");
      EXPECT_EQ(main.lblNotice.Caption, "");
    }
  }
}

TEST(Nesting, APropertiesWindowLeftOpenClosesWhenItNoLongerHolds) {
  const struct {
    const char* What;
    std::function<void(Bench&)> Do;
    const char* Why;  // nullptr: it stays
  } cases[] = {
      {"download", Transfers[0].Give, nullptr},
      {"reset", Transfers[1].Give, "a file was loaded"},
      {"open", Transfers[2].Give, "a file was loaded"},
      {"read", Transfers[3].Give, "the drive's settings were read anew"},
      {"grid", [](Bench& bench) { UseGrid(bench, &Form8::Command2); }, "a file was loaded"},
      {"port closed", [](Bench& bench) { bench.Connect(); }, "the connection was closed"},
      {"port closed under its load",
       [](Bench& bench) {
         bench.user.Close(bench.tool.sysConfig);
         bench.user.Click(bench.tool.mdiForm1.mnuConnect);
         bench.world.At(700, [&] { bench.user.Click(bench.tool.form2.openPort); });
         bench.user.Click(bench.tool.mdiForm1[Tool1::Properties]);
         EXPECT_FALSE(bench.tool.mdiForm1.MnuCurrentLoop.Enabled);
       },
       "the connection was closed"},
      {"another drive",
       [](Bench& bench) {
         bench.user.Click(bench.tool.mdiForm1.mnuConnect);
         bench.user.Choose(bench.tool.form2.Combo1[Form2::DeviceList], 2);
       },
       "another device number was chosen"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.What);
    ConnectedBench bench;
    const Tool& tool = bench.tool;
    bench.user.Click(bench.tool.mdiForm1[Tool1::Properties]);
    c.Do(bench);
    EXPECT_EQ(tool.sysConfig.Loaded, c.Why == nullptr);
    bench.ExpectAtRest();
    const std::string& notice = tool.mdiForm1.lblNotice.Caption;
    if (c.Why == nullptr) {
      EXPECT_EQ(notice, "");
    } else {
      const std::string closed = std::string("The Properties window was closed: ") + c.Why + ".";
      EXPECT_TRUE(notice.ends_with(closed)) << notice;
    }
  }
}

}  // namespace
}  // namespace gainsmith::test
