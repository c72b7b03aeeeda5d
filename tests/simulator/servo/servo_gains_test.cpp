// What the gains and filters do to current and motion, seen through the drive's own recordings.
#include <gtest/gtest.h>

#include "servo_bench.h"

namespace gainsmith::sim {
namespace {

Samples CurrentStep(ServoBench& bench) {
  bench.Write(Reg::TestCurrent, 512);
  bench.Command(Reg::CurrentStep, 1, 50);
  return bench.StepA();
}
double StepPeakA(ServoBench& bench) { return PeakOf(CurrentStep(bench)); }
double SettledA(ServoBench& bench) { return MeanOf(Part(CurrentStep(bench), 60, 200)); }
double StepRippleA(ServoBench& bench) { return SpreadOf(Part(CurrentStep(bench), 60, 200)); }
// How many samples the current stays below nine tenths.
double RiseSamples(ServoBench& bench) {
  const Samples samples = CurrentStep(bench);
  const auto isThere = [](double sampleA) { return sampleA > 0.45; };
  return static_cast<double>(std::find_if(samples.begin(), samples.end(), isThere) -
                             samples.begin());
}

Samples Errors(ServoBench& bench, int divider, int from, int to) {
  bench.RunPositionTest({}, divider);
  return Part(bench.ErrorPulses(), from, to);
}
// With a sample every 10 ms the default move cruises over these samples of its way out.
double LagPulses(ServoBench& bench) { return MeanOf(Errors(bench, 20, 100, 190)); }
// With a sample every millisecond the ramp takes these samples, and the move cruises afterwards.
double RampPulses(ServoBench& bench) { return PeakOf(Errors(bench, 2, 6, 31)); }
double EarlyLagPulses(ServoBench& bench) { return MeanOf(Errors(bench, 2, 40, 41)); }
// The way out ends with sample 141, the way back begins with sample 147.
double MovePulses(ServoBench& bench) { return PeakOf(Errors(bench, 30, 0, 200)); }
double PausePulses(ServoBench& bench) { return PeakOf(Errors(bench, 30, 144, 147)); }

double CruiseRpm(ServoBench& bench) {
  bench.RunPositionTest({}, 30);
  return MeanOf(Part(bench.VelocityRpm(), 20, 130));
}
double CruiseA(ServoBench& bench) {
  bench.RunPositionTest({}, 30);
  return MeanOf(Part(bench.CurrentA(), 20, 130));
}
double RippleA(ServoBench& bench) {
  bench.RunVelocityTest(2);
  return SpreadOf(Part(bench.CurrentA(), 120, 200));
}

// Over a step of the commanded velocity to 100 rpm.
double OvershootRpm(ServoBench& bench) {
  bench.Write(Reg::Kaff, 0);
  bench.Write(Reg::LowKaff, 0);
  bench.LoadVelocityTest(100, 10000, 2000, 1);
  bench.Write(Reg::VelocityCommand, 2);
  double peakRpm = 0;
  for (int i = 0; i < 1000; ++i) {
    bench.PassMs(0.5);
    peakRpm = std::max(peakRpm, bench.Rpm());
  }
  return peakRpm - 100;
}

double JogLagPulses(ServoBench& bench, double rpm) {
  bench.Load({.Rpm = rpm});
  bench.Command(Reg::PositionCommand, 1, 1000);
  return bench.Motor.PositionErrorPulses();
}
double SlowLagPulses(ServoBench& bench) { return JogLagPulses(bench, 12); }
double FastLagPulses(ServoBench& bench) { return JogLagPulses(bench, 300); }

struct Experiment {
  const char* Name;
  double (*Measure)(ServoBench&);
  std::vector<std::pair<Reg, int>> Changed;  // from the factory values
  double Least, Most;
  std::string_view Motor = MotorPresets().front().Name;
};

TEST(ServoGains, DoWhatTheTextbookSays) {
  using enum Reg;
  const char* const heavy = "heavy-load";
  const char* const springy = "springy-coupling";
  const Experiment experiments[] = {
      {"rises fast, but to be seen", RiseSamples, {}, 6, 29},
      {"overshoots little", StepPeakA, {}, 0.5, 0.53},
      {"settles", SettledA, {}, 0.49, 0.51},
      {"keeps still", StepRippleA, {}, 0.001, 0.02},
      {"current Ki x 8", StepPeakA, {{CurrentKi, 4000}}, 0.65, 0.85},
      {"current Kp / 8 alone", StepPeakA, {{CurrentKp, 50}, {CurrentKi, 0}}, 0.2, 0.4},
      {"current Kp x 10 rings", StepRippleA, {{CurrentKp, 4000}, {CurrentKi, 0}}, 1, 9},

      {"factory gains follow", MovePulses, {}, 1, 25},
      {"and settle", PausePulses, {}, 0, 3},
      {"at the speed commanded", CruiseRpm, {}, 299, 301},
      {"lag is speed over Kp", LagPulses, {{Kvff, 0}}, 249, 251},
      {"Kp / 2", LagPulses, {{Kvff, 0}, {PositionKp, 400}}, 499, 501},
      {"Kvff", LagPulses, {}, -5, 5},
      {"Ki", LagPulses, {{Kvff, 0}, {PositionKi, 800}}, -5, 5},
      {"no Kd", EarlyLagPulses, {{Kvff, 0}, {Kaff, 0}}, 200, 250},
      {"Kd", EarlyLagPulses, {{Kvff, 0}, {Kaff, 0}, {PositionKd, 500}}, 150, 190},
      // 1000 is for the rotor alone. The table takes 9000, less what the measured speed, which is
      // a millisecond old, makes the velocity loop add by itself.
      {"no Kaff", RampPulses, {{Kaff, 0}}, 10, 20},
      {"Kaff", RampPulses, {{Kaff, 5000}}, 0, 8},
      {"too much", RampPulses, {{Kaff, 25000}}, 20, 60},
      {"heavy, no Kaff", RampPulses, {{Kaff, 0}}, 50, 80, heavy},
      {"heavy, Kaff", RampPulses, {{Kaff, 31000}}, 1, 16, heavy},
      {"double inertia believed", RampPulses, {{Kaff, 5000}, {Inertia, 65535}}, 8, 20},
      {"slow velocity reference", RampPulses, {{VelocityReferenceHz, 20}}, 20, 120},

      {"word",
       MovePulses,
       {{Kvff, 0}, {PositionKp, 1}, {LowPositionKp, 1}, {FollowingErrorLimit, 0}},
       32767,
       32767},

      {"low speed set", SlowLagPulses, {{LowKvff, 0}, {LowPositionKp, 400}}, 18, 22},
      {"not the high", SlowLagPulses, {{LowKvff, 0}, {PositionKp, 400}}, 8, 12},
      {"high speed set", FastLagPulses, {{Kvff, 0}, {PositionKp, 400}}, 450, 550},
      {"not the low", FastLagPulses, {{Kvff, 0}, {LowPositionKp, 400}}, 225, 275},

      {"friction", CruiseA, {}, 0.077, 0.081},  // 0.03 Nm and 3e-4 Nms of 31.4 rad/s over 0.5 Nm/A
      {"quiet", RippleA, {}, 0.001, 0.03},
      {"velocity Kp x 10 rings", RippleA, {{VelocityKp, 6000}}, 5, 25},
      {"step of the velocity", OvershootRpm, {}, 5, 20},
      {"no velocity Ki", OvershootRpm, {{VelocityKi, 0}}, -10, 0},
      {"velocity Kp / 4", OvershootRpm, {{VelocityKp, 150}}, 30, 80},
      {"slow velocity filter", OvershootRpm, {{VelocityFilterHz, 50}}, 40, 100},
      {"no current filter", OvershootRpm, {{CurrentReferenceHz, 0}}, 5, 20},

      // A gain that suits the heavier load brings out the resonance near 250 Hz.
      {"howls", RippleA, {{VelocityKp, 1500}}, 5, 25, springy},
      {"trap 1", RippleA, {{VelocityKp, 1500}, {Trap1Hz, 265}, {Trap1WidthHz, 20}}, 0, 3, springy},
      {"trap 2", RippleA, {{VelocityKp, 1500}, {Trap2Hz, 265}, {Trap2WidthHz, 20}}, 0, 3, springy},
      {"beside", RippleA, {{VelocityKp, 1500}, {Trap1Hz, 700}, {Trap1WidthHz, 20}}, 5, 25, springy},
  };
  for (const Experiment& experiment : experiments) {
    ServoBench bench(experiment.Motor);
    for (const auto& [reg, value] : experiment.Changed) bench.Write(reg, value);
    const double measured = experiment.Measure(bench);
    EXPECT_GE(measured, experiment.Least) << experiment.Name;
    EXPECT_LE(measured, experiment.Most) << experiment.Name;
    EXPECT_TRUE(bench.Trips.empty()) << experiment.Name;
  }
}

}  // namespace
}  // namespace gainsmith::sim
