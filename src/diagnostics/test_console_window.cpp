// Form110: the watching of its locations, and the checksum of a file.
#include "diagnostics/test_console_window.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/number_text.h"

namespace gainsmith {
namespace {

// The first click meets another text than the one that starts the watching, and only shows it.
constexpr const char* LoadCaption = "OK?";
constexpr const char* StartCaption = "Ok?";
constexpr const char* StopCaption = "Abort?";
constexpr const char* FailureText = "通讯故障！";

constexpr std::array<const char*, Form110::WatchCount> LoadTexts{"ox66", "0x99", "0xaa", "0xbb",
                                                                 "0xcc"};
constexpr std::array<Register, Form110::WatchCount> WatchRegisters{
    Register::Watch1, Register::Watch2, Register::Watch3, Register::Watch4, Register::Watch5};

// A location in two registers, as the console reckons it: its third byte weighs as much as its
// first.
long WatchValue(std::uint16_t first, std::uint16_t second) {
  const int b0 = first >> 8;
  const int b1 = first & 0xFF;
  const int b2 = second >> 8;
  const int b3 = second & 0xFF;
  return b1 * 65536L + b0 * 256L + b2 * 256L + b3;
}

bool Separates(char c) { return c == ' ' || c == '\t' || c == ',' || c == '\r' || c == '\n'; }

}  // namespace

Form110::Form110(World& world, Link& link) : world_(world), link_(link) {
  Design();
  Command1.OnClick = [this] { Command1_Click(); };
  Command2.OnClick = [this] { Command2_Click(); };
  Timer1.OnTimer = [this] { Timer1_Timer(); };
}

void Form110::Form_Load() {
  for (std::size_t i = 0; i < WatchCount; ++i) Text1[i].Text = LoadTexts[i];
  Command1.Caption = LoadCaption;
  Timer1.Stop();
}

void Form110::Command1_Click() {
  if (Command1.Caption == StartCaption) {
    Timer1.Start();
    Command1.Caption = StopCaption;
  } else {
    StopWatching();
  }
}

void Form110::StopWatching() {
  Timer1.Stop();
  Command1.Caption = StartCaption;
}

void Form110::Timer1_Timer() {
  if (link_.ErrandUnderWay()) return;
  const Errand errand(link_, *this, Errand::Of::Tick);
  for (std::size_t i = 0; i < WatchCount; ++i) {
    const Sent sent = link_.Exchange(errand, Function::Read, WatchRegisters[i], 2, ShortExchange);
    if (sent == Sent::Off) {
      if (!errand.Over()) StopWatching();
      return;
    }
    if (sent == Sent::Lost) {
      world_.ShowMessage({FailureText, FailureText});
      return;
    }
    Text1[i].Text =
        std::to_string(WatchValue(RawValue(link_.RxBuffer, 0), RawValue(link_.RxBuffer, 1)));
  }
}

void Form110::Command2_Click() {
  const std::optional<std::string> text = world_.ReadFile(world_.ProgramDirectory() + "/ACCTxt");
  AccChecksum.reset();
  if (!text) return;
  if (const std::optional<AccArray> bytes = ReadAccNumbers(*text)) {
    AccChecksum = CalcCrc16(*bytes);
  }
}

std::optional<Form110::AccArray> Form110::ReadAccNumbers(std::string_view text) {
  std::vector<std::uint8_t> numbers;
  while (true) {
    const auto start = std::find_if_not(text.begin(), text.end(), Separates);
    const auto end = std::find_if(start, text.end(), Separates);
    if (start == end) break;
    const std::optional<float> number = WholeNumber(std::string_view(start, end));
    if (!number || RoundHalfToEven(*number) != *number || *number < 0 || *number > 255) {
      return std::nullopt;
    }
    numbers.push_back(static_cast<std::uint8_t>(*number));
    text = std::string_view(end, text.end());
  }
  if (numbers.empty() || numbers.size() > AccBytes) return std::nullopt;

  AccArray bytes{};
  const std::size_t kept = numbers.size() - std::min<std::size_t>(numbers.size(), 2);
  std::copy_n(numbers.begin(), kept, bytes.begin());
  return bytes;
}

}  // namespace gainsmith
