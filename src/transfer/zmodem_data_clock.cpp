#include "transfer/zmodem_data_clock.h"

#include <algorithm>
#include <utility>

namespace orvex {
namespace {

using std::chrono::seconds;

constexpr Time silence_limit = seconds(60);
constexpr Time again_after = seconds(10);
constexpr Time pace_limit = seconds(120);
constexpr std::uint64_t pace_bytes = 1024;

}  // namespace

ZmodemDataClock::ZmodemDataClock(std::uint64_t place, Time now)
    : owed_since_(now), quiet_since_(now), pace_mark_(place), pace_by_(now + pace_limit) {}

void ZmodemDataClock::handed_over(Time left) {
  if (!std::exchange(owes_, true)) owed_since_ = left;
  quiet_since_ = left;
  again_ = left + again_after;
}

void ZmodemDataClock::gained(std::uint64_t place, bool owes_more, Time now) {
  owes_ = owes_more;
  owed_since_ = now;
  quiet_since_ = now;
  again_ = now + again_after;
  if (place >= pace_mark_ && place < pace_mark_ + pace_bytes) return;
  pace_mark_ = place;
  pace_by_ = now + pace_limit;
}

Time ZmodemDataClock::give_up() const {
  return std::min(owed_since_ + silence_limit, pace_by_);
}

std::string_view ZmodemDataClock::reason() const {
  return owed_since_ + silence_limit <= pace_by_ ? "no answer for 60 s"
                                                 : "the scanner takes the file too slowly";
}

}  // namespace orvex
