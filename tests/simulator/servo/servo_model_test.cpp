// The loops against the second order in closed form, in the table of docs/simulated_drive.md.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "servo_bench.h"

namespace gainsmith::sim {
namespace {

// A PI controller around one inertia (or inductance) that loses `Loss` of its state a second. Its
// delays, `LateS` in all and `MeasuredLateS` of them on the way back, are taken as 1 - s t, so that
// the whole stays of second order:
//   ((1 - P LateS) s2 + (Loss + P - I LateS) s + I) y = (P s + I) (1 - (LateS - MeasuredLateS) s) r
struct Loop {
  double P, I, Loss, LateS, MeasuredLateS = 0;

  double Inertia() const { return 1 - P * LateS; }
  double Sigma() const { return (Loss + P - I * LateS) / Inertia() / 2; }
  // The free swing's two parts, a cosine and a sine over its frequency, or their hyperbolic twins.
  double Even(double t) const {
    const double w = std::sqrt(std::abs(Square()));
    return std::exp(-Sigma() * t) * (Square() > 0 ? std::cos(w * t) : std::cosh(w * t));
  }
  double Odd(double t) const {
    const double w = std::sqrt(std::abs(Square()));
    return std::exp(-Sigma() * t) * (Square() > 0 ? std::sin(w * t) : std::sinh(w * t)) / w;
  }

 private:
  double Square() const { return I / Inertia() - Sigma() * Sigma(); }
};
// To a step of r, from a few delays after it on.
double StepAnswer(const Loop& loop, double t) {
  const double first = (1 - loop.P * loop.MeasuredLateS) / loop.Inertia();
  const double second = (loop.Loss - loop.I * loop.MeasuredLateS) / loop.Inertia();
  return 1 - first * loop.Even(t) - (second - first * loop.Sigma()) * loop.Odd(t);
}
// To what takes 1 of the state a second from now on, until the integral has taken it over.
double BrakeAnswer(const Loop& loop, double t) { return -loop.Odd(t) / loop.Inertia(); }

TEST(ServoModel, CurrentStepIsOfSecondOrder) {
  const struct {
    int Kp, Ki;
    double Band;  // of the step
    double InductanceBelieved = 1, ResistanceBelieved = 1;
  } cases[] = {{400, 500, 0.02}, {200, 1000, 0.02},  {100, 125, 0.02},      {100, 500, 0.02},
               {60, 1000, 0.06}, {50, 250, 0.02, 2}, {100, 125, 0.02, 1, 4}};
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << "Kp " << test.Kp << ", Ki " << test.Ki);
    ServoBench bench;
    bench.Write(Reg::CurrentKp, test.Kp);
    bench.Write(Reg::CurrentKi, test.Ki);
    bench.Write(Reg::Inductance, static_cast<int>(800 * test.InductanceBelieved));
    bench.Write(Reg::Resistance, static_cast<int>(260 * test.ResistanceBelieved));
    bench.Write(Reg::TestCurrent, 2 * 1024);
    bench.Command(Reg::CurrentStep, 1, 0);
    // A voltage answers a period late and holds for one; 8 mH and 2.6 ohms.
    constexpr double PeriodS = 62.5e-6;
    const Loop loop{.P = test.Kp * 0.05 * test.InductanceBelieved / 0.008,
                    .I = test.Ki * 16 * test.ResistanceBelieved / 0.008,
                    .Loss = 2.6 / 0.008,
                    .LateS = 1.5 * PeriodS};
    double worst = 0;
    const Samples currentA = bench.StepA();
    for (std::size_t i = 6; i < currentA.size(); ++i) {
      const double expected = StepAnswer(loop, static_cast<double>(i) * PeriodS);
      worst = std::max(worst, std::abs(currentA[i] / 2 - expected));
    }
    EXPECT_LT(worst, test.Band);
  }
}

// Of the default motor.
constexpr double InertiaKgM2 = 9 * 0.34e-4;
constexpr double FrictionNm = 0.03;
constexpr double ViscousNmS = 3e-4;
constexpr double TorqueNmPerA = 0.5;
constexpr double RpmPerRadPerS = 60 / (2 * std::numbers::pi);

TEST(ServoModel, VelocityStepIsOfSecondOrder) {
  const struct {
    int Vp, Vi;
    double Band;  // of the step
  } cases[] = {{150, 50, 0.01},  {150, 200, 0.02}, {300, 300, 0.03},
               {250, 500, 0.04}, {600, 100, 0.05}, {600, 500, 0.06}};
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << "Vp " << test.Vp << ", Vi " << test.Vi);
    ServoBench bench;
    const std::pair<Reg, int> gains[] = {{Reg::VelocityKp, test.Vp},
                                         {Reg::LowVelocityKp, test.Vp},
                                         {Reg::VelocityKi, test.Vi},
                                         {Reg::LowVelocityKi, test.Vi},
                                         {Reg::Kaff, 0},
                                         {Reg::LowKaff, 0}};
    for (const auto& [reg, value] : gains) bench.Write(reg, value);
    bench.LoadVelocityTest(100, 60'000, 2000, 1);
    bench.Write(Reg::VelocityCommand, 2);

    // The current loop follows in 0.4 ms, its reference's filter in 0.11 and is held for 0.25; the
    // speed is the mean of 2 ms behind a filter of 0.05.
    const double perAmpere = TorqueNmPerA / InertiaKgM2 * RpmPerRadPerS;
    const Loop loop{.P = test.Vp / 32.0 / 1024 * perAmpere,
                    .I = test.Vi * 2 / 1024.0 * perAmpere,
                    .Loss = ViscousNmS / InertiaKgM2,
                    .LateS = (0.4 + 0.11 + 0.125 + 1.0 + 0.05) / 1000,
                    .MeasuredLateS = (1.0 + 0.05) / 1000};
    const double frictionRpmPerS = FrictionNm / InertiaKgM2 * RpmPerRadPerS;
    double worstRpm = 0;
    for (int i = 1; i < 400; ++i) {
      bench.PassMs(0.5);
      const double t = i * 0.0005;
      const double expectedRpm = 100 * StepAnswer(loop, t) + frictionRpmPerS * BrakeAnswer(loop, t);
      if (i > 12) worstRpm = std::max(worstRpm, std::abs(bench.Rpm() - expectedRpm));
    }
    EXPECT_LT(worstRpm / 100, test.Band);
  }
}

}  // namespace
}  // namespace gainsmith::sim
