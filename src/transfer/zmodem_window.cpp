#include "transfer/zmodem_window.h"

#include <algorithm>
#include <utility>

#include "transfer/zmodem_retry.h"

namespace orvex {
namespace {

constexpr std::uint32_t usual_rate = 115200;
constexpr Time first_run = std::chrono::milliseconds(1400);
constexpr Time longest_run = 2 * first_run;
constexpr std::size_t largest = 32768;
constexpr std::int64_t at_system = 1024;  // bytes
/// A ZDATA with its smallest piece is 48 bytes long, the complaint about it 21.
constexpr std::int64_t out_and_back = 64;

Time byte_time(std::uint32_t bits_per_second) {
  return Time(std::chrono::seconds(10)) / (bits_per_second == 0 ? usual_rate : bits_per_second);
}

std::size_t carried_in(Time time, std::uint32_t bits_per_second) {
  const std::size_t two_pieces = 2 * ZmodemRetry(bits_per_second).piece();
  return std::clamp(static_cast<std::size_t>(time / byte_time(bits_per_second)), two_pieces,
                    largest);
}

}  // namespace

ZmodemWindow::ZmodemWindow(std::uint32_t bits_per_second)
    : byte_time_(byte_time(bits_per_second)),
      most_(carried_in(longest_run, bits_per_second)),
      size_(carried_in(first_run, bits_per_second)) {}

void ZmodemWindow::restart_at(std::uint64_t place, Time now) {
  offset_ = asked_ = acknowledged_ = place;
  sent_most_ = std::max(sent_most_, place);
  outruns_rate_ = false;
  disturbed_ = true;
  busy_until_ = now;
  heard_from_ = now + byte_time_ * out_and_back;
}

bool ZmodemWindow::is_echo(std::uint64_t place, Time now) {
  return place == acknowledged_ && now < std::exchange(heard_from_, Time{});
}

void ZmodemWindow::sent(std::size_t length, bool answer_asked) {
  offset_ += length;
  if (answer_asked) asked_ = offset_;
  sent_most_ = std::max(sent_most_, offset_);
}

void ZmodemWindow::handed_over(std::size_t bytes, Time now) {
  busy_until_ = std::max(busy_until_, now) + byte_time_ * static_cast<std::int64_t>(bytes);
}

std::size_t ZmodemWindow::acknowledge(std::uint64_t place, Time now) {
  if (place <= acknowledged_ || place > offset_) return 0;
  const auto news = static_cast<std::size_t>(place - std::exchange(acknowledged_, place));
  outruns_rate_ = outruns_rate_ || too_early_for_rate(now);
  return news;
}

bool ZmodemWindow::too_early_for_rate(Time now) const {
  // What is not acknowledged may be as much as twice its size on the line.
  const auto still_to_come = 2 * (offset_ - acknowledged_) + ZmodemRetry::largest_piece;
  return now < busy_until_ - byte_time_ * static_cast<std::int64_t>(still_to_come);
}

void ZmodemWindow::fit(std::size_t news, std::size_t spare, std::size_t unsent, Time now) {
  if (disturbed_) {
    disturbed_ = false;
    return;
  }
  const std::int64_t idle = (now - busy_until_) / byte_time_;  // negative: bytes still to leave
  const auto under_way = static_cast<std::int64_t>(offset_ - acknowledged_);
  const std::int64_t carried = under_way - static_cast<std::int64_t>(unsent) + idle;
  const std::size_t wanted =
      std::min(most_, spare + static_cast<std::size_t>(std::max<std::int64_t>(carried, 0)));
  size_ = wanted >= size_ ? std::min(wanted, size_ + news) : size_ - (size_ - wanted + 7) / 8;
}

bool ZmodemWindow::has_room(std::size_t length) const {
  return all_acknowledged() || offset_ - acknowledged_ + length <= size();
}

bool ZmodemWindow::wants_answer(std::size_t length) const {
  return !outruns_rate_ || offset_ + length - asked_ >= unpaced / 2;
}

Time ZmodemWindow::ready_for_more(std::size_t ahead, std::size_t unsent) const {
  const auto too_many = static_cast<std::int64_t>(unsent) - static_cast<std::int64_t>(ahead);
  return busy_until_ + byte_time_ * too_many;
}

Time ZmodemWindow::left(Time now) const {
  if (outruns_rate_) return now;
  return std::clamp(busy_until_, now, now + byte_time_ * at_system);
}

}  // namespace orvex
