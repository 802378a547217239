#include "console/progress_line.h"

#include <chrono>
#include <cstdio>

namespace orvex {
namespace {

using namespace std::chrono_literals;

constexpr Time step = 100ms;
constexpr int cells = 40;

}  // namespace

std::string ProgressLine::draw(double done, double total, Time now) {
  if (total <= 0) {
    const bool drawn = begun_.has_value();
    begun_.reset();
    return drawn ? "\r\x1B[K" : "";
  }
  if (begun_ && now - drawn_at_ < step && done < total) return {};
  if (!begun_) begun_ = now;
  drawn_at_ = now;
  const double seconds = std::chrono::duration<double>(now - *begun_).count();
  const double rate = seconds > 0 ? done / seconds : 0;
  const auto full = static_cast<std::size_t>(cells * done / total);
  char numbers[64];
  std::snprintf(numbers, sizeof numbers, "] %3.0f %%  %.0f bytes/s", 100 * done / total, rate);
  return "\r[" + std::string(full, '#') + std::string(cells - full, ' ') + numbers + "\x1B[K";
}

}  // namespace orvex
