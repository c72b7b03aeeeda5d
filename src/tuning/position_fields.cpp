// Form3: its fields, from the drive and back.
#include <cmath>

#include "platform/number_text.h"
#include "tuning/position_window.h"
#include "tuning/pulse_generator.h"

namespace gainsmith {
namespace {

struct GainRegister {
  Form3::Field Index;
  Register Target;
  gainsmith::Slot Slot;
};

// In the order of their reading; the encoder counts, the progress flash and Kaff come between them.
constexpr GainRegister HighGains[] = {
    {Form3::PositionKp, Register::PositionKpHigh, Slot::PositionKpHigh},
    {Form3::Kvff, Register::KvffHigh, Slot::KvffHigh},
    {Form3::PositionKd, Register::PositionKdHigh, Slot::PositionKdHigh},
    {Form3::VelocityKp, Register::VelocityKpHigh, Slot::VelocityKpHigh},
    {Form3::VelocityKi, Register::VelocityKiHigh, Slot::VelocityKiHigh},
};
constexpr GainRegister LowPositionGains[] = {
    {Form3::LowPositionKp, Register::PositionKpLow, Slot::PositionKpLow},
    {Form3::LowPositionKi, Register::PositionKiLow, Slot::PositionKiLow},
    {Form3::LowPositionKd, Register::PositionKdLow, Slot::PositionKdLow},
};
constexpr GainRegister LowVelocityGains[] = {
    {Form3::LowVelocityKp, Register::VelocityKpLow, Slot::VelocityKpLow},
    {Form3::LowVelocityKi, Register::VelocityKiLow, Slot::VelocityKiLow},
    {Form3::LowKvff, Register::KvffLow, Slot::KvffLow},
    {Form3::LowKaff, Register::KaffLow, Slot::KaffLow},
};

const GainRegister* GainOf(std::size_t index) {
  for (const std::span<const GainRegister> gains :
       {std::span<const GainRegister>(HighGains), std::span<const GainRegister>(LowPositionGains),
        std::span<const GainRegister>(LowVelocityGains)}) {
    for (const GainRegister& gain : gains) {
      if (gain.Index == index) return &gain;
    }
  }
  return nullptr;
}

}  // namespace

bool Form3::ReadGains(const Errand& errand) {
  const auto readAll = [&](std::span<const GainRegister> gains) {
    for (const GainRegister& gain : gains) {
      if (!ReadGain(errand, gain.Target, gain.Slot, GainCopies[gain.Index], Text1[gain.Index])) {
        return false;
      }
    }
    return true;
  };
  if (!readAll(HighGains)) return false;
  const std::optional<float> counts = Run.LoadRead(errand, Register::EncoderCounts);
  if (!counts) return false;
  trace_.EncoderCounts = *counts;
  params_[Slot::EncoderCounts] = *counts;
  AddFieldTips(*counts);
  if (!readAll(LowPositionGains)) return false;
  world_.Show(progress_);
  return readAll(LowVelocityGains) &&
         ReadGain(errand, Register::KaffHigh, Slot::KaffHigh, KaffCopy, Text5);
}

bool Form3::ReadGain(const Errand& errand, Register reg, Slot slot, float& copy, TextBox& text) {
  const std::optional<float> value = Run.LoadRead(errand, reg);
  if (!value) return false;
  copy = *value;
  params_[slot] = *value;
  text.Text = PlainText(*value);
  return true;
}

Form3::Entries Form3::TakeEntries() const {
  Entries entries;
  for (std::size_t i = 0; i < FieldCount; ++i) {
    entries.Text1[i] = LeadingNumber(Text1[i].Text);
  }
  entries.Kaff = LeadingNumber(Text5.Text);
  return entries;
}

bool Form3::ValidateFields(const Entries& entries) {
  struct Limit {
    Field Index;
    bool ZeroPasses;
    double Largest;
    const char* Text;
  };
  constexpr double Unlimited = HUGE_VAL;
  constexpr Limit motion[] = {
      {Velocity, false, LargestWord, "Volicty value should be an integer value of 1-65535"},
      {Acceleration, false, LargestWord,
       "Acceleration value should be an integer value of 1-65535"},
      {Distance, false, Unlimited, "Distance value should be an integer value of at least 1"},
      {Interval, false, LargestCount, "Interval value should be an integer value of 1-32767"},
      {RepeatTimes, false, LargestCount, "Repeat time value should be an integer value of 1-32767"},
      {PositionKp, false, LargestWord,
       "The Kp value of Position Loop 1 should be an integer value of 0-65535"},
      {Kvff, true, LargestWord,
       "The Kvff value of Position Loop 1 should be an integer value of 0-65535"},
      {PositionKd, true, LargestWord,
       "The Kd valueof Position Loop 1 should be an integer value of 0-65535"},
      {VelocityKp, true, LargestWord,
       "The Vp value of Position Loop 1 should be an integer value of 0-65535"},
      {VelocityKi, true, LargestWord,
       "The Vi value of Position Loop 1 should be an integer value of 0-65535"},
  };
  constexpr Limit low[] = {
      {LowPositionKp, true, LargestWord,
       "The Kp value of Position Loop 2 should be an integer value of 0-65535"},
      {LowPositionKi, true, LargestWord,
       "The Kvff value of Position Loop 2 should be an integer value of 0-65535"},
      {LowPositionKd, true, LargestWord,
       "The Kd valueof Position Loop 2 should be an integer value of 0-65535"},
      {LowVelocityKp, true, LargestWord,
       "The Vp value of Position Loop 2 should be an integer value of 0-65535"},
      {LowVelocityKi, true, LargestWord,
       "The Vi value of Position Loop 2 should be an integer value of 0-65535"},
  };
  const auto pass = [&](std::span<const Limit> limits) {
    for (const Limit& limit : limits) {
      const double number = entries.Text1[limit.Index];
      const double smallest = limit.Index == Distance ? 1 : 0;
      const bool above = number > smallest ||
                         (number == smallest && (limit.ZeroPasses || limit.Index == Distance));
      if (!above || number > limit.Largest) return RefuseField(Text1[limit.Index], limit.Text);
    }
    return true;
  };
  if (!pass(motion)) return false;
  if (entries.Kaff < 0 || entries.Kaff > LargestWord) {
    return RefuseField(Text5,
                       "The Kaff value of Position Loop 1 should be an integer value of 0-65535");
  }
  return pass(low);
}

bool Form3::ValidateWords(const Entries& entries) {
  const auto tooHigh = [&](Field field, const char* what, double unitsPerWord) {
    const double largest = LargestFor(unitsPerWord, trace_.EncoderCounts);
    return RefuseField(Text1[field], std::string("The ") + what +
                                         " is more than the drive can take: with " +
                                         PlainText(trace_.EncoderCounts) +
                                         " pulses per revolution it takes at most " +
                                         FixedText(largest, 0) + ". Nothing was sent.");
  };
  const auto& [speedDivisor, accelFirst, accelSecond] = PositionUnits;
  if (trace_.EncoderCounts == 0) {
    return RefuseField(Text1[Velocity],
                       "The drive reports 0 pulses per motor revolution, so no speed can be "
                       "reckoned. Set the encoder resolution in Properties. Nothing was sent.");
  }
  if (SpeedWord(entries.Text1[Velocity], trace_.EncoderCounts, speedDivisor) > LargestWord) {
    return tooHigh(Velocity, "velocity", speedDivisor);
  }
  if (AccelWord(entries.Text1[Acceleration], trace_.EncoderCounts, accelFirst, accelSecond) >
      LargestWord) {
    return tooHigh(Acceleration, "acceleration", accelFirst * accelSecond);
  }
  if (entries.Text1[Distance] > LargestLength) {
    return RefuseField(Text1[Distance],
                       "The distance is more than the drive can take: it takes at most " +
                           FixedText(LargestLength, 0) + " pulses. Nothing was sent.");
  }
  if (!PackWord(SplitLength(entries.Text1[Distance]).Low)) {
    return RefuseField(Text1[Distance],
                       "This distance does not fit the drive's two words. Use a whole number of "
                       "pulses. Nothing was sent.");
  }
  return true;
}

bool Form3::RefuseField(TextBox& field, const std::string& text) {
  world_.ShowMessage({text, "Invalide Value", MessageButtons::Ok, MessageIcon::Critical});
  world_.SetFocus(field);
  return false;
}

float* Form3::RememberedOf(std::size_t index) {
  switch (index) {
    case Velocity:
      return &Remembered.Velocity;
    case Acceleration:
      return &Remembered.Acceleration;
    case Distance:
      return &Remembered.Distance;
    case Interval:
      return &Remembered.IntervalMs;
    default:
      return nullptr;
  }
}

bool Form3::WriteFieldIfChanged(const Errand& errand, const Entries& entries, std::size_t index) {
  const auto number = static_cast<float>(entries.Text1[index]);
  if (float* remembered = RememberedOf(index)) {
    *remembered = number;
    return true;
  }
  const GainRegister* gain = GainOf(index);
  if (gain == nullptr || number == GainCopies[index]) return true;
  GainCopies[index] = number;
  params_[gain->Slot] = number;
  return Run.Write(errand, gain->Target, number);
}

bool Form3::WriteKaff(const Errand& errand, const Entries& entries) {
  KaffCopy = static_cast<float>(entries.Kaff);
  params_[Slot::KaffHigh] = KaffCopy;
  return Run.Write(errand, Register::KaffHigh, KaffCopy);
}

bool Form3::WriteChangedGains(const Errand& errand, const Entries& entries) {
  constexpr Field order[] = {PositionKp,    Kvff,          PositionKd,    VelocityKp,
                             Velocity,      Acceleration,  Distance,      Interval,
                             VelocityKi,    LowPositionKp, LowPositionKi, LowPositionKd,
                             LowVelocityKp, LowVelocityKi};
  for (const Field field : order) {
    if (!WriteFieldIfChanged(errand, entries, field)) return false;
  }
  return WriteKaff(errand, entries);
}

RunNotes Form3::NotesOfRun() const {
  RunNotes notes;
  const auto add = [&](const gainsmith::Frame& frame, std::span<const GainRegister> gains) {
    for (const GainRegister& gain : gains) {
      notes.Settings.push_back({frame.Caption + " " + Label1[gain.Index].Caption,
                                PlainText(GainCopies[gain.Index]), ""});
    }
  };
  add(Frame5, HighGains);
  notes.Settings.push_back({Frame5.Caption + " " + Label7.Caption, PlainText(KaffCopy), ""});
  add(Frame6, LowPositionGains);
  add(Frame6, LowVelocityGains);
  for (const Field field : {Velocity, Acceleration, Distance, Interval, RepeatTimes}) {
    const auto value = static_cast<float>(entries_.Text1[field]);
    notes.Settings.push_back({Label1[field].Caption, PlainText(value), ""});
  }
  notes.Score = MoveScoreOf(trace_, params_[Slot::InPosition]);
  return notes;
}

}  // namespace gainsmith
