// What stands at the far end of the virtual world's serial line.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

#include "simulator/simulated_drive.h"

namespace gainsmith::test {

// Times are microseconds of the virtual world.
class SerialDevice {
 public:
  SerialDevice() = default;
  SerialDevice(const SerialDevice&) = delete;
  SerialDevice& operator=(const SerialDevice&) = delete;
  virtual ~SerialDevice() = default;

  virtual void Receive(std::uint8_t byte, std::int64_t nowUs) = 0;
  // Bytes that have arrived at the host by now, each given once.
  virtual std::vector<std::uint8_t> Transmit(std::int64_t nowUs) = 0;
};

// The simulated drive.
class DriveDevice : public SerialDevice {
 public:
  explicit DriveDevice(sim::DriveOptions options = {}) : Drive(std::move(options)) {}
  void Receive(std::uint8_t byte, std::int64_t nowUs) override {
    if (bytes_++ % 8 == 0) {
      const int number = Requests++;
      if (BeforeRequest) BeforeRequest(number);
    }
    Drive.Receive(byte, nowUs);
  }
  std::vector<std::uint8_t> Transmit(std::int64_t nowUs) override { return Drive.Transmit(nowUs); }

  sim::SimulatedDrive Drive;
  // Called with the number of each request (from 0) before its first byte reaches the drive.
  std::function<void(int)> BeforeRequest;
  int Requests = 0;

 private:
  int bytes_ = 0;
};

// Several devices on one line: each hears everything, one at a time answers.
class Bus : public SerialDevice {
 public:
  explicit Bus(std::vector<SerialDevice*> devices) : devices_(std::move(devices)) {}
  void Receive(std::uint8_t byte, std::int64_t nowUs) override {
    for (SerialDevice* device : devices_) device->Receive(byte, nowUs);
  }
  std::vector<std::uint8_t> Transmit(std::int64_t nowUs) override {
    std::vector<std::uint8_t> all;
    for (SerialDevice* device : devices_) {
      const std::vector<std::uint8_t> bytes = device->Transmit(nowUs);
      all.insert(all.end(), bytes.begin(), bytes.end());
    }
    return all;
  }

 private:
  std::vector<SerialDevice*> devices_;
};

// A device that gives to every whole request what a function says, at a time of its choosing.
class ScriptedDevice : public SerialDevice {
 public:
  struct Reply {
    // From the last byte of the request.
    std::int64_t AfterUs = 0;
    std::vector<std::uint8_t> Bytes;
  };
  // What to send for the n-th request (from 0); several entries make a split reply.
  using Script = std::function<std::vector<Reply>(int n, const std::vector<std::uint8_t>& request)>;

  explicit ScriptedDevice(Script script) : script_(std::move(script)) {}

  void Receive(std::uint8_t byte, std::int64_t nowUs) override {
    request_.push_back(byte);
    if (request_.size() < 8) return;
    for (Reply& reply : script_(count_++, request_)) {
      pending_.emplace_back(nowUs + reply.AfterUs, std::move(reply.Bytes));
    }
    request_.clear();
  }

  std::vector<std::uint8_t> Transmit(std::int64_t nowUs) override {
    std::vector<std::uint8_t> arrived;
    while (!pending_.empty() && pending_.front().first <= nowUs) {
      arrived.insert(arrived.end(), pending_.front().second.begin(), pending_.front().second.end());
      pending_.pop_front();
    }
    return arrived;
  }

 private:
  Script script_;
  int count_ = 0;
  std::vector<std::uint8_t> request_;
  std::deque<std::pair<std::int64_t, std::vector<std::uint8_t>>> pending_;
};

}  // namespace gainsmith::test
