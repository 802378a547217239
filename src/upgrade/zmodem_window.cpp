#include "upgrade/zmodem_window.h"

#include <algorithm>

namespace orvex {
namespace {

constexpr std::uint32_t fast_rate = 200000;
constexpr std::uint32_t usual_rate = 115200;
constexpr std::size_t smallest_piece = 32;

std::size_t piece_for(std::uint32_t bits_per_second) {
  if (bits_per_second == 0) return ZmodemWindow::largest_piece;
  return std::clamp<std::size_t>(bits_per_second / 8, smallest_piece, ZmodemWindow::largest_piece);
}

}  // namespace

ZmodemWindow::ZmodemWindow(std::uint32_t bits_per_second)
    : fast_(bits_per_second > fast_rate),
      byte_time_(Time(std::chrono::seconds(10)) /
                 (bits_per_second == 0 ? usual_rate : bits_per_second)),
      piece_(piece_for(bits_per_second)),
      large_(fast_) {}

void ZmodemWindow::restart_at(std::uint64_t place) {
  offset_ = asked_ = acknowledged_ = place;
  if (place < sent_most_) repeated_ = true;
  sent_most_ = std::max(sent_most_, place);
  large_ = fast_;
  outruns_rate_ = false;
  busy_until_ = Time{};  // what was thrown away takes no time on the line
}

void ZmodemWindow::sent(std::size_t length, bool answer_asked) {
  offset_ += length;
  if (answer_asked) asked_ = offset_;
  sent_most_ = std::max(sent_most_, offset_);
}

void ZmodemWindow::handed_over(std::size_t bytes, Time now) {
  if (ever_acknowledged_ && now > busy_until_) ran_dry();
  busy_until_ = std::max(busy_until_, now) + byte_time_ * static_cast<std::int64_t>(bytes);
}

bool ZmodemWindow::acknowledge(std::uint64_t place, Time now) {
  if (place <= acknowledged_ || place > offset_) return false;
  acknowledged_ = place;
  ever_acknowledged_ = true;
  if (acknowledged_ == offset_) ran_dry();
  outruns_rate_ = outruns_rate_ || too_early_for_rate(now);
  return true;
}

bool ZmodemWindow::too_early_for_rate(Time now) const {
  // What is not acknowledged may be as much as twice its size on the line.
  const auto still_to_come = 2 * (offset_ - acknowledged_) + largest_piece;
  return now < busy_until_ - byte_time_ * static_cast<std::int64_t>(still_to_come);
}

std::size_t ZmodemWindow::limit() const {
  if (outruns_rate_) return unpaced;
  return large_ ? largest : 2 * piece_;
}

bool ZmodemWindow::has_room(std::size_t length) const {
  return offset_ - acknowledged_ + length <= limit();
}

bool ZmodemWindow::wants_answer(std::size_t length) const {
  return offset_ + length - asked_ >= limit() / 2;
}

}  // namespace orvex
