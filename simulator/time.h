#pragma once

#include <chrono>

namespace orvex::simulator {

/// Time since some fixed moment. Whoever owns a simulated part hands it in; it never goes back.
using Time = std::chrono::nanoseconds;

}  // namespace orvex::simulator
