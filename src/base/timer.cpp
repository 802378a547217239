#include "base/timer.h"

#include <utility>

namespace orvex {

Timer::Timer(const Clock& clock, std::function<void()> tick)
    : clock_(clock), tick_(std::move(tick)) {}

void Timer::Interval(int milliseconds) {
  interval_ = milliseconds;
  if (enabled_) restart();
}

void Timer::Enabled(bool enabled) {
  if (enabled && !enabled_) restart();
  enabled_ = enabled;
}

std::optional<Time> Timer::due() const {
  if (!enabled_ || interval_ <= 0) return std::nullopt;
  return due_;
}

void Timer::run() {
  const Time period = std::chrono::milliseconds(interval_);
  const Time now = clock_.now();
  due_ += period;
  if (due_ <= now) due_ = now + period;
  tick_();
}

void Timer::restart() {
  due_ = clock_.now() + std::chrono::milliseconds(interval_);
}

}  // namespace orvex
