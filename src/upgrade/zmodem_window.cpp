#include "upgrade/zmodem_window.h"

#include <algorithm>

namespace orvex {
namespace {

constexpr std::uint32_t fast_rate = 200000;
constexpr Time fast_answer = std::chrono::milliseconds(10);
constexpr std::size_t smallest_piece = 32;

std::size_t piece_for(std::uint32_t bits_per_second) {
  if (bits_per_second == 0) return ZmodemWindow::largest_piece;
  return std::clamp<std::size_t>(bits_per_second / 8, smallest_piece, ZmodemWindow::largest_piece);
}

}  // namespace

ZmodemWindow::ZmodemWindow(std::uint32_t bits_per_second)
    : fast_rate_(bits_per_second > fast_rate),
      piece_(piece_for(bits_per_second)),
      fast_(fast_rate_) {}

void ZmodemWindow::restart_at(std::uint64_t place) {
  offset_ = asked_ = acknowledged_ = place;
  sent_most_ = std::max(sent_most_, place);
  timed_since_.reset();
  fast_ = fast_rate_;
}

void ZmodemWindow::sent(std::size_t length, bool answer_asked) {
  offset_ += length;
  if (answer_asked) asked_ = offset_;
  sent_most_ = std::max(sent_most_, offset_);
}

void ZmodemWindow::handed_over(Time now) {
  if (timed_since_ || asked_ != offset_) return;
  timed_place_ = offset_;
  timed_since_ = now;
}

bool ZmodemWindow::acknowledge(std::uint64_t place, Time now) {
  if (place <= acknowledged_ || place > offset_) return false;
  acknowledged_ = place;
  ever_acknowledged_ = true;
  if (timed_since_ && place >= timed_place_) {
    fast_ = fast_rate_ || now - *timed_since_ < fast_answer;
    timed_since_.reset();
  }
  return true;
}

bool ZmodemWindow::has_room(std::size_t length) const {
  return offset_ - acknowledged_ + length <= limit();
}

bool ZmodemWindow::wants_answer(std::size_t length) const {
  return offset_ + length - asked_ >= limit() / 2;
}

}  // namespace orvex
