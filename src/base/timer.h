#pragma once

#include <functional>
#include <optional>

#include "base/clock.h"

namespace orvex {

/// Something that wants to run at a moment of its own, on the one thread and only inside a pump.
class Scheduled {
 public:
  virtual ~Scheduled() = default;
  /// The moment at which run() is wanted; none if never.
  virtual std::optional<Time> due() const = 0;
  /// Called at or after due().
  virtual void run() = 0;
};

/// A periodic window timer. It starts disabled, with an interval of 0.
class Timer final : public Scheduled {
 public:
  /// `clock` must outlive the timer. `tick` may change this timer and any other.
  Timer(const Clock& clock, std::function<void()> tick);

  int Interval() const { return interval_; }
  /// Milliseconds; 0 stands still. On an enabled timer a new period begins.
  void Interval(int milliseconds);

  bool Enabled() const { return enabled_; }
  /// Begins a period. On a timer that is enabled already true changes nothing.
  void Enabled(bool enabled);

  /// Puts the next tick, and the rhythm of those after it, at `time`.
  void tick_at(Time time) { due_ = time; }
  std::optional<Time> due() const override;
  /// Keeps the rhythm of the periods; periods missed altogether give one tick, not many.
  void run() override;

 private:
  void restart();

  const Clock& clock_;
  std::function<void()> tick_;
  int interval_ = 0;
  bool enabled_ = false;
  Time due_{};
};

}  // namespace orvex
