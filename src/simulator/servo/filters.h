// The drive's filters: low passes and the trap that cuts a narrow band out of the current
// reference.
#pragma once

namespace gainsmith::sim {

// First order. A cut-off of 0 Hz switches it off.
class LowPass {
 public:
  void Configure(double cutOffHz, double periodS);
  double Step(double input) { return output_ += share_ * (input - output_); }
  void Reset(double output) { output_ = output; }

 private:
  double share_ = 1.0;
  double output_ = 0.0;
};

// Second order notch. It keeps a band of `widthHz` around its frequency at least 12 dB down. Off
// when frequency or width is 0, and for a frequency at or above half the sampling rate.
class TrapFilter {
 public:
  void Configure(double frequencyHz, double widthHz, double periodS);
  double Step(double input) {
    const double output = b0_ * input + delay1_;
    delay1_ = b1_ * input - a1_ * output + delay2_;
    delay2_ = b2_ * input - a2_ * output;
    return output;
  }
  void Reset() { delay1_ = delay2_ = 0.0; }

 private:
  double b0_ = 1.0;
  double b1_ = 0.0;
  double b2_ = 0.0;
  double a1_ = 0.0;
  double a2_ = 0.0;
  double delay1_ = 0.0;
  double delay2_ = 0.0;
};

}  // namespace gainsmith::sim
