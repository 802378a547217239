#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "base/clock.h"
#include "testing/virtual/scripted_receiver.h"
#include "transfer/file_engine.h"
#include "transfer/file_source.h"

namespace orvex::testing {

/// `size` bytes that look random, the same each time.
std::string noise(std::size_t size, std::uint32_t seed = 1);

/// A file in memory; from byte `readable` on it can't be read.
class MemorySource final : public FileSource {
 public:
  explicit MemorySource(std::string data, std::uint64_t readable = UINT64_MAX)
      : data_(std::move(data)), readable_(readable) {}
  std::string name() const override { return "scanner.bin"; }
  std::uint64_t size() const override { return data_.size(); }
  std::int64_t modified() const override { return 1700000000; }
  unsigned mode() const override { return 0100644; }
  bool read(std::uint64_t offset, std::span<char> into) override;

 private:
  const std::string data_;
  const std::uint64_t readable_;
};

/// What goes wrong on one direction of the line.
struct Damage {
  std::size_t flip_every = 0;
  std::size_t drop_every = 0;
  std::optional<std::size_t> flip_at = {};  // the number of one byte
  std::optional<std::size_t> drop_at = {};
  std::size_t flip_one_in = 0;  // by chance
  std::uint32_t seed = 1;
};

/// One direction of a serial line: 10 bits a byte, `latency` behind the last one.
class PacedLine {
 public:
  /// `deep` bytes stand in an adapter, which no discard reaches and nobody counts.
  PacedLine(Time byte_time, Time latency, Damage damage, std::size_t deep = 0)
      : byte_time_(byte_time),
        latency_(latency),
        damage_(damage),
        deep_(deep),
        random_(damage.seed) {}
  void put(std::string_view bytes) { unsent_ += bytes; }
  void discard() { unsent_.resize(std::min(unsent_.size(), deep_)); }
  std::size_t unsent() const { return unsent_.size() - std::min(unsent_.size(), deep_); }
  bool idle() const { return unsent_.empty(); }
  /// What arrives by `now`.
  std::string advance(Time now);

  std::string carried;  // all that went on the wire, before any damage

 private:
  const Time byte_time_;
  const Time latency_;
  const Damage damage_;
  const std::size_t deep_;
  std::mt19937 random_;
  Time free_at_{};
  bool idle_ = true;
  std::string unsent_;
  std::deque<std::pair<Time, char>> under_way_;
};

/// A transfer on a virtual clock, from a sender to a scripted receiver.
struct Course {
  ReceiverScript receiver;
  Damage there;  // sender to receiver
  Damage back;
  Time latency{};
  std::size_t deep = 0;
  Time byte_time = Time(86806);  // 115,200 bits a second
  Time step = std::chrono::milliseconds(1);
  Time limit = std::chrono::hours(2);
  std::size_t driver_room = 1024;  // the driver keeps no more than that unsent
  std::function<void(FileEngine&, Time)> each_step = {};  // after the engine had its turn
};

struct Outcome {
  FileEngine::State state = FileEngine::State::running;
  std::string reason;
  bool finished = false;
  bool sleeps = true;  // a tick does what it wanted to be woken for
  Time took{};         // until the engine has finished
  Time last_answer{};  // when the receiver last said something
  std::uint64_t progress = 0;
  bool progress_true =
      true;           // it never went back, ran ahead of the receiver, or showed the end early
  std::string there;  // bytes on the wire
  std::string back;
  ScriptedReceiver receiver{ReceiverScript{}};
};

Outcome run(FileEngine& engine, const Course& course);
/// Runs a ZmodemSender of `data` at 115,200 bits a second.
Outcome send(const std::string& data, const Course& course);

void expect_complete(const Outcome& outcome, const std::string& data);
void expect_failed(const Outcome& outcome, const std::string& reason);

/// How often `part` is in the text.
int times(std::string_view part, std::string_view text);

/// A header of the type with this number, as a receiver prints it.
std::string answer(unsigned type, std::uint32_t value);

}  // namespace orvex::testing
