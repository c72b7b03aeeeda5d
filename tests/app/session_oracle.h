// SessionOracle: what must be true at each quiet moment of a session, whatever was pressed.
//
// Every setting that was sent is one packed word in slot and register, or a message has said
// otherwise; the motor turns only under a run button that says "Stop", a held jog button, or in a
// test whose window or link was lost.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "bench.h"
#include "params/parameter_table.h"
#include "platform/number_text.h"

namespace gainsmith::test {

class SessionOracle {
 public:
  // The drives on the line by their address. `held` are the buttons held down.
  SessionOracle(Bench& bench, std::map<int, sim::SimulatedDrive*> drives,
                const std::set<Button*>& held)
      : bench_(bench), drives_(std::move(drives)), held_(held) {}

  // Tests, jogs and gains that went out so far.
  int Tests = 0;
  int Jogs = 0;
  int Gains = 0;

  // The user has written into a field, or has committed what stands there.
  void Edited(const TextBox& field) { edited_.insert(&field); }
  void Committed(const TextBox& field) { edited_.erase(&field); }

  // For a moment at which no handler has anything to say and no message is on the screen.
  void Look() {
    TakeFrames();
    TakeWordsOfFailure();
    LookAtSettings();
    LookAtGains();
    LookAtMotor();
  }

 private:
  static const ParameterRow* RowOfRegister(int reg) {
    for (const ParameterRow& row : ParameterRows()) {
      if (static_cast<int>(row.Source) == reg && Travels(row.Index)) return &row;
    }
    return nullptr;
  }

  void TakeFrames() {
    const auto& frames = bench_.world.Log.Frames();
    for (; seen_ < frames.size(); ++seen_) {
      const LoggedFrame& frame = frames[seen_];
      if (!frame.IsWrite()) continue;
      const int reg = frame.Register();
      if (const ParameterRow* row = RowOfRegister(reg)) {
        sent_[frame.Bytes[0]][reg] = row;
        Gains += reg == 31 || reg == 32 || reg == 13;
      }
      Tests += (reg == 9 || reg == 35) && frame.Value() == 2;
      Jogs += reg == 9 && (frame.Value() == 1 || frame.Value() == 5);
    }
  }

  // After these nothing is promised until the next word.
  void TakeWordsOfFailure() {
    bool told = !bench_.tool.mdiForm1.lblNotice.Caption.empty();
    for (; told_ < bench_.world.Messages.size(); ++told_) {
      const std::string& text = bench_.world.Messages[told_].Text;
      for (const char* word : {"Unable to", "ot sent", "can't", "Fatal", "crashed", "Fail in"}) {
        if (text.find(word) == std::string::npos) continue;
        told = true;
        lost_.insert(bench_.tool.link.DeviceAddress);
      }
    }
    for (const auto& [address, drive] : drives_) {
      for (const std::string& event : drive->TakeEvents()) {
        // Its working values are those of its memory again.
        if (event == "reset") sent_[address].clear();
      }
    }
    const int files = bench_.tool.form8.FilesOpened;
    if (told || std::exchange(files_, files) != files) sent_.clear();
    // The table is another drive's.
    const int device = bench_.tool.link.DeviceAddress;
    if (std::exchange(device_, device) != device) sent_.clear();
  }

  void LookAtSettings() {
    const ParameterStore& table = bench_.tool.parameters;
    for (const auto& [reg, row] : sent_[device_]) {
      // These do not follow a click.
      if (row->Index == Slot::Interpolation || row->Index == Slot::AnalogReverse) continue;
      const float raw = row->Source == Register::Flags ? table.DriveFlagsWord
                                                       : ValueToRaw(row->Index, table[row->Index]);
      const auto drive = drives_.find(device_);
      if (drive == drives_.end()) continue;
      EXPECT_EQ(PackWord(raw), drive->second->Registers().Values[static_cast<std::size_t>(reg)])
          << "register " << reg;
    }
  }

  // What a tuning window shows and remembers of the gains that were sent.
  void LookAtGains() {
    const Tool& tool = bench_.tool;
    const velocityModeTune& window = tool.velocityMode;
    if (!window.Loaded || tool.link.LoadFailed) return;
    for (std::size_t i = 0; i < window.Gains.size(); ++i) {
      const auto& [field, target, slot, smallest] = window.Gains[i];
      const auto& sent = sent_[device_];
      if (!sent.contains(static_cast<int>(target))) continue;
      const float kept = tool.parameters[slot];
      EXPECT_EQ(window.GainCopies[i], kept) << "gain " << i;
      const TextBox& text = window.Text1[field];
      if (edited_.contains(&text)) continue;
      EXPECT_EQ(PackWord(static_cast<float>(LeadingNumber(text.Text))), PackWord(kept))
          << text.Name;
    }
  }

  void LookAtMotor() {
    const Tool& tool = bench_.tool;
    for (const auto& [address, drive] : drives_) {
      const auto& registers = drive->Registers();
      const int position = registers[sim::Reg::PositionCommand];
      const int velocity = registers[sim::Reg::VelocityCommand];
      if (position == 0 && velocity == 0) {
        lost_.erase(address);
        continue;
      }
      if (lost_.contains(address) || address != device_) continue;
      if (position == 1 || position == 5) {
        EXPECT_FALSE(held_.empty()) << "jogging, and no button is held";
      }
      // A window that could not load has said nothing to the drive yet.
      if (tool.link.LoadFailed) continue;
      if (position == 2 && tool.form3.Loaded) {
        EXPECT_EQ(tool.form3.Command1[Form3::MainStart].Caption, "Stop");
      }
      if (velocity != 0 && tool.velocityMode.Loaded) {
        EXPECT_EQ(tool.velocityMode.Command1.Caption, "Stop");
      }
    }
  }

  Bench& bench_;
  std::map<int, sim::SimulatedDrive*> drives_;
  const std::set<Button*>& held_;
  // By address and register: settings that have gone out since the last word of a failure.
  std::map<int, std::map<int, const ParameterRow*>> sent_;
  // Fields whose text was not committed.
  std::set<const TextBox*> edited_;
  std::size_t seen_ = 0;
  std::size_t told_ = 0;
  int files_ = 0;
  int device_ = 1;
  // Drives that may be turning since the link to them was lost.
  std::set<int> lost_;
};

}  // namespace gainsmith::test
