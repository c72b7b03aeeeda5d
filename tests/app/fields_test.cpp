// What the fields take is in fields.txt: the words that go out for an entry, and what is said of
// it.
#include <string>
#include <utility>

#include "bench.h"
#include "golden.h"

namespace gainsmith::test {
namespace {

std::string Joined(const Texts& texts) {
  std::string all;
  for (const std::string& text : texts) {
    // Reads depend on the moment.
    if (!text.starts_with("R ")) all += (all.empty() ? "" : ", ") + text;
  }
  std::replace(all.begin(), all.end(), '\n', '/');
  return all;
}

// A window that stays open, its fields, and the button that looks at them.
struct Place {
  std::function<void()> Open;
  Window& Opened;
  Button& Looks;
};

void TryEntries(Bench& bench, const Place& place, TextBox& field, Texts& lines) {
  const std::string good = field.Text;
  for (const char* entry : {"", "-1", "0", "0.5", "1", "3000", "32767", "32767.5", "65535",
                            "65535.499", "65536", "131071.4999", "2147483648", "1e999"}) {
    if (!place.Opened.Loaded) place.Open();
    bench.TakeFrames();
    if (!bench.user.CanReach(field)) continue;
    bench.user.Paste(field, entry);
    if (field.OnKeyPress) bench.user.Enter(field);
    (void)bench.user.TryClick(place.Looks);
    if (place.Looks.Caption == "Stop") (void)bench.user.TryClick(place.Looks);
    bench.world.RunFor(2000);
    Texts said;
    const auto messages = std::exchange(bench.world.Messages, {});
    for (const Message& m : messages) said.push_back(m.Title + ": " + m.Text);
    lines.push_back(place.Opened.Name + " " + field.Name + " \"" + entry +
                    "\": " + Joined(bench.TakeFrames()) + " | " + Joined(said) + " | " +
                    field.Text + (bench.world.Focus == &field ? " <" : ""));
    bench.world.Focus = nullptr;
    field.Text = good;
  }
}

TEST(FieldsTest, TakeWhatUsersKnow) {
  Texts lines;
  Bench bench({}, Edition::ServiceBench);
  Tool& tool = bench.tool;
  bench.Connect();
  const auto opens = [&](Command command) { return [&, command] { tool.commands.Run(command); }; };
  const Place places[] = {
      {opens(Command::CurrentLoop), tool.form1, tool.form1.cmdTest},
      {opens(Command::PositionLoop), tool.form3, tool.form3.Command1[Form3::MainStart]},
      {opens(Command::BenchVelocityLoop), tool.velocityMode, tool.velocityMode.Command1},
      {opens(Command::PropertiesButton), tool.sysConfig, tool.sysConfig.cmdOK}};
  for (const Place& place : places) {
    place.Open();
    for (Control* control : place.Opened.Controls) {
      if (control->Kind != ControlKind::TextBox) continue;
      TryEntries(bench, place, static_cast<TextBox&>(*control), lines);
    }
    if (place.Opened.Loaded) bench.user.Close(place.Opened);
    bench.world.RunFor(2000);
  }
  ExpectKnown(lines, "fields.txt");
}

}  // namespace
}  // namespace gainsmith::test
