// What makes the drive take the power off its motor by itself, and under which error it is logged.
#pragma once

#include <string_view>

#include "simulator/bank/error_log.h"

namespace gainsmith::sim {

enum class Trip {
  OverCurrent,  // one and a half times register 245, at any moment
  Overload,     // held at the rated current of register 246 for five seconds: see overload_guard.h
  OverSpeed,    // the motor turns faster than OverSpeedRpm
  FollowingError,  // further from its reference than register 18
  EncoderLoss,     // the encoder's plug is off
};

constexpr double OverSpeedRpm = 5500.0;

// "overload" and so on.
constexpr std::string_view NameOf(Trip trip) {
  switch (trip) {
    case Trip::OverCurrent:
      return "over-current";
    case Trip::Overload:
      return "overload";
    case Trip::OverSpeed:
      return "over-speed";
    case Trip::FollowingError:
      return "following-error";
    case Trip::EncoderLoss:
      return "encoder-loss";
  }
  return {};
}

// The log has ten kinds of errors and none for a speed: it is the limit that was passed.
constexpr DriveError ErrorOf(Trip trip) {
  switch (trip) {
    case Trip::OverCurrent:
    case Trip::Overload:
      return DriveError::OverCurrent;
    case Trip::OverSpeed:
      return DriveError::Limit;
    case Trip::FollowingError:
      return DriveError::FollowingError;
    case Trip::EncoderLoss:
      break;
  }
  return DriveError::Encoder;
}

}  // namespace gainsmith::sim
