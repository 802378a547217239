#pragma once

#include <chrono>

namespace orvex {

/// Time since some fixed moment of the process. It never goes back.
using Time = std::chrono::nanoseconds;

class Clock {
 public:
  virtual ~Clock() = default;
  virtual Time now() const = 0;
};

}  // namespace orvex
