#include "transfer/zmodem_frames.h"

#include <algorithm>
#include <array>
#include <span>

namespace orvex {
namespace {

constexpr std::size_t longest_limited_run = 4096;

}  // namespace

bool ZmodemFrames::append() {
  ZmodemWindow& window = transfer_.window;
  if (!open_) begin();
  std::array<char, ZmodemRetry::largest_piece> piece;
  const auto bytes = std::span(piece).first(next_piece());
  if (!transfer_.file.read(window.offset(), bytes)) return false;
  const ZmodemEnd end = end_of(bytes.size());
  transfer_.wire.add_subpacket({bytes.data(), bytes.size()}, end);
  open_ = end == ZmodemEnd::ask || end == ZmodemEnd::more;
  window.sent(bytes.size(), end == ZmodemEnd::ask || end == ZmodemEnd::wait);
  return true;
}

void ZmodemFrames::begin() {
  const std::uint64_t offset = transfer_.window.offset();
  run_end_ = std::min<std::uint64_t>(transfer_.size, offset + run_limit());
  open_ = true;
  transfer_.wire.add_header(ZmodemFrame::zdata, offset);
}

std::size_t ZmodemFrames::next_piece() const {
  const std::uint64_t left = (open_ ? run_end_ : transfer_.size) - transfer_.window.offset();
  return static_cast<std::size_t>(
      std::min<std::uint64_t>({transfer_.retry.piece(), left, run_limit()}));
}

ZmodemEnd ZmodemFrames::end_of(std::size_t piece) const {
  const std::uint64_t end = transfer_.window.offset() + piece;
  if (end == transfer_.size) return ZmodemEnd::frame;
  if (end == run_end_) return ZmodemEnd::wait;
  const bool ask = !transfer_.receiver.segmented() && transfer_.window.wants_answer(piece);
  return ask ? ZmodemEnd::ask : ZmodemEnd::more;
}

std::size_t ZmodemFrames::run_limit() const {
  const ZmodemReceiver& receiver = transfer_.receiver;
  const std::size_t piece = transfer_.retry.piece();
  if (transfer_.retry.one_at_a_time()) return piece;
  const std::size_t window = transfer_.window.size();
  if (receiver.buffer > 0) return std::min({receiver.buffer, window, longest_limited_run});
  if (!receiver.overlapped) return piece;
  if (!receiver.full_duplex) return std::min(window, longest_limited_run);
  const bool endless = transfer_.answers == ZmodemAnswers::to_requests ||
                       transfer_.answers == ZmodemAnswers::to_nothing;
  return endless ? static_cast<std::size_t>(transfer_.size) : window;
}

}  // namespace orvex
