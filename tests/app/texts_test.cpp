// What the tool says while it is used is in texts.txt: every message, and all that the main window
// says, with its numbers taken out.
#include <algorithm>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "golden.h"
#include "scenes.h"

namespace gainsmith::test {
namespace {

std::string OnOneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', '/');
  return text;
}

// Hears what the tool says from now on.
class Listener {
 public:
  Listener(Bench& bench, std::set<std::string>& heard) : bench_(bench), heard_(heard) {
    bench.world.OnMessage = [this](const Message& message) {
      Look();
      heard_.insert(OnOneLine(message.Title + " | " + message.Text));
    };
    LookAgain();
  }
  void Look() {
    const Tool& tool = bench_.tool;
    const MDIForm1& main = tool.mdiForm1;
    for (const Label& label : main.lblStrip) Note(label.Caption + "\n" + label.ToolTip);
    for (const std::string* text : {&main.lblConnection.Caption, &main.lblHint.Caption,
                                    &main.lblNotice.Caption, &tool.waiting.Caption}) {
      Note(*text);
    }
    for (const auto& row : main.grdSettings.Rows) Note(row[1] + "\n" + row[5]);
    for (const ListItem& port : tool.form2.Combo1[Form2::PortList].Items) Note(port.ToolTip);
    for (const Trouble& trouble : main.Troubles.Entries()) Note(trouble.Text);
  }
  void NoteCopies() {
    const Tool& tool = bench_.tool;
    for (const PictureBox* picture :
         {&tool.form1.Picture1, &tool.form3.Plot.Picture1, &tool.form5.Plot.Picture1,
          &tool.velocityMode.Plot.Picture1}) {
      Note(picture->OnCopy());
    }
  }
  // Sentence by sentence; numbers are a matter of the moment.
  void Note(const std::string& text) {
    if (!seen_.insert(text).second) return;
    static const std::regex ends("[:.] |[\n\t]");
    static const std::regex number("[0-9]+");
    for (std::sregex_token_iterator sentence(text.begin(), text.end(), ends, -1), end;
         sentence != end; ++sentence) {
      std::string said = sentence->str();
      said.erase(0, said.find_first_not_of(" .0123456789:-"));
      if (!said.empty()) heard_.insert(std::regex_replace(said, number, "#"));
    }
  }

 private:
  void LookAgain() {
    Look();
    bench_.world.At(200, [this] { LookAgain(); });
  }

  Bench& bench_;
  std::set<std::string>& heard_;
  std::set<std::string> seen_;
};

TEST(TextsTest, AreThoseThatUsersKnow) {
  std::set<std::string> heard;
  std::vector<Scene> scenes(std::begin(Scenes), std::end(Scenes));
  for (const Transfer& transfer : Transfers) scenes.push_back(SceneOf(transfer));
  const std::vector<std::pair<int, std::function<void(Bench&)>>> blows{
      {0, [](Bench&) {}},
      {3, [](Bench& bench) { bench.device.Drive.Inject(sim::Fault::Silent); }},
      {12, [](Bench& bench) { bench.device.Drive.Inject(sim::Fault::Silent); }},
      {12, [](Bench& bench) { bench.world.At(1, [&bench] { bench.world.ClosePort(); }); }},
      {44, [](Bench& bench) { bench.world.At(1, [&bench] { bench.world.ClosePort(); }); }}};
  for (const Scene& scene : scenes) {
    for (const auto& [after, strike] : blows) {
      StruckBench bench;
      Listener listener(bench, heard);
      bench.device.BeforeRequest = [&, strike = strike,
                                    last = bench.device.Requests + after](int number) {
        if (number == last) strike(bench);
      };
      scene.Play(bench);
      bench.world.RunFor(3000);
      listener.NoteCopies();
    }
  }
  Bench bench({}, Edition::ServiceBench);
  Listener listener(bench, heard);
  Tool& tool = bench.tool;
  bench.world.RunFor(1000);
  auto devices = std::exchange(bench.world.Devices, {});
  bench.world.RunFor(6000);
  bench.world.Devices = std::move(devices);
  for (const int port : {2, 1}) {
    bench.device.Drive.Inject(sim::Fault::Silent);
    bench.user.Click(tool.mdiForm1.mnuConnect);
    bench.user.Choose(tool.form2.Combo1[Form2::PortList], port - 1);
    bench.user.Click(tool.form2.openPort);
  }
  bench.Repair();
  // Each flag and each mode.
  auto& flags = bench.device.Drive.Registers().Values[static_cast<std::size_t>(Register::Flags)];
  const std::uint16_t before = flags;
  for (const int word : {0x0000, 0xFFFF, 0xFF00, 0x00FF, static_cast<int>(before)}) {
    flags = static_cast<std::uint16_t>(word);
    if (bench.world.IsPortOpen()) bench.Connect();
    bench.Connect();
    bench.world.RunFor(1000);
  }
  bench.user.Click(tool.mdiForm1.MnuCurrentLoop);
  bench.user.Type(tool.form1.Text1[Form1::Kp], "900");
  bench.user.Click(tool.form1.cmdTest);
  bench.user.Close(tool.form1);
  bench.user.Click(tool.benchMenu->mnuParameters);
  bench.user.Click(tool.form8.writedata);
  bench.user.Close(tool.form8);
  for (MenuItem* help : tool.mdiForm1.mnuHelp.Items) {
    if (help->OnClick) help->OnClick();
  }
  tool.dialog.lblTorvaneWebLink.OnClick();
  tool.dialog.lblTorvaneUSAWebLink.OnClick();
  listener.Note(tool.dialog.Label2.Caption);
  for (const std::string& document : bench.world.Documents) listener.Note(document);
  for (int reg = 0; reg < 200; ++reg) {
    tool.link.OnLost(Function::Read, Register(reg), 1);
    listener.Look();
  }
  ExpectKnown({heard.begin(), heard.end()}, "texts.txt");
}

}  // namespace
}  // namespace gainsmith::test
