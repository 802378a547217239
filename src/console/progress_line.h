#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "base/clock.h"

namespace orvex {

/// The line of a terminal that shows how far a transfer is.
class ProgressLine {
 public:
  /// What to write now, with no line end; empty if the last line is good enough still. 0 of 0
  /// clears the line.
  std::string draw(double done, double total, Time now);

 private:
  std::optional<Time> begun_;
  Time drawn_at_{};
};

}  // namespace orvex
