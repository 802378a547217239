#include "transfer/zmodem_retry.h"

#include <algorithm>

namespace orvex {
namespace {

constexpr int most_attempts = 100;
constexpr std::size_t pieces_of_a_bad_run = 8;
constexpr std::size_t pieces_of_a_good_run = 24;

std::size_t piece_for(std::uint32_t bits_per_second) {
  if (bits_per_second == 0) return ZmodemRetry::largest_piece;
  return std::clamp<std::size_t>(bits_per_second / 8, ZmodemRetry::smallest_piece,
                                 ZmodemRetry::largest_piece);
}

}  // namespace

ZmodemRetry::ZmodemRetry(std::uint32_t bits_per_second)
    : most_(piece_for(bits_per_second)), piece_(most_) {}

bool ZmodemRetry::lost(std::uint64_t place) {
  attempts_ = place == place_ ? attempts_ + 1 : 1;
  place_ = place;
  if (reached_ - good_from_ < pieces_of_a_bad_run * piece_) {
    piece_ = std::max(smallest_piece, piece_ / 2);
  }
  good_from_ = reached_;
  return attempts_ < most_attempts;
}

void ZmodemRetry::gained(std::uint64_t place) {
  reached_ = place;
  attempts_ = 0;
  if (reached_ - good_from_ < pieces_of_a_good_run * piece_) return;
  piece_ = std::min(most_, 2 * piece_);
  good_from_ = reached_;
}

}  // namespace orvex
