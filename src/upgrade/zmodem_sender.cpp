#include "upgrade/zmodem_sender.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <span>
#include <utility>

#include "upgrade/zmodem_crc.h"

namespace orvex {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr Time start_limit = seconds(30);
constexpr Time silence_limit = milliseconds(14800);  // the end is to show within 15 s
constexpr Time end_limit = seconds(120);
constexpr Time repeat_after = seconds(4);

constexpr std::size_t careful_piece = 128;
constexpr std::size_t largest_batch = 32768;
/// Takes 89 ms at 115200 Bps.
constexpr std::size_t most_unsent_on_paced_line = 1024;
constexpr std::size_t longest_name = 255;
constexpr std::size_t crc_step = 65536;

}  // namespace

ZmodemSender::ZmodemSender(std::unique_ptr<FileSource> file, Time now,
                           std::uint32_t bits_per_second)
    : file_(std::move(file)),
      size_(file_->size()),
      window_(bits_per_second),
      began_(now),
      last_sent_(now),
      last_heard_(now) {
  if (size_ > std::numeric_limits<std::uint32_t>::max()) {
    fail_quietly("the file is larger than ZMODEM can send");
  }
}

std::uint64_t ZmodemSender::progress() const {
  if (state_ == State::complete) return size_;
  return std::min(gained_, size_ - std::min<std::uint64_t>(size_, 1));
}

bool ZmodemSender::take_discard() {
  return std::exchange(discard_, false);
}

std::size_t ZmodemSender::most_unsent() const {
  return window_.outruns_rate() ? largest_batch : most_unsent_on_paced_line;
}

void ZmodemSender::cancel(Time) {
  if (state_ == State::complete) {
    phase_ = Phase::over;
  } else if (state_ == State::running) {
    fail("stopped by the user");
  }
}

// Time.

Time ZmodemSender::deadline() const {
  switch (phase_) {
    case Phase::greeting:
      return std::min(began_ + start_limit, cancel_deadline_.value_or(Time::max()));
    case Phase::offer:
      return began_ + start_limit;
    case Phase::data:
      return std::min(silence_deadline(), pace_deadline_);
    case Phase::end:
      return pace_deadline_;
    case Phase::farewell:
      return farewell_deadline_;
    case Phase::over:
      break;
  }
  return Time::max();
}

Time ZmodemSender::silence_deadline() const {
  return (windowless_ ? std::max(last_heard_, last_sent_) : last_heard_) + silence_limit;
}

std::string_view ZmodemSender::deadline_reason() const {
  if (cancel_deadline_) return "the scanner cancelled the transfer";
  if (phase_ == Phase::greeting) return "the scanner did not ask for the file";
  if (phase_ == Phase::offer) return "the scanner did not start to take the file";
  if (phase_ == Phase::end) return "the scanner did not confirm the end of the file";
  if (silence_deadline() <= pace_deadline_) return "the scanner stopped answering";
  return "the scanner takes the file too slowly";
}

Time ZmodemSender::repeat_time() const {
  return std::max(last_sent_, last_heard_) + repeat_after;
}

bool ZmodemSender::wants_repeat() const {
  if (phase_ == Phase::over || !pending_.empty() || header_due_ || crc_done_) return false;
  return phase_ != Phase::data || !may_send();
}

std::optional<Time> ZmodemSender::wake() const {
  if (phase_ == Phase::over) return std::nullopt;
  if (crc_done_) return last_heard_;
  return wants_repeat() ? std::min(deadline(), repeat_time()) : deadline();
}

void ZmodemSender::tick(Time now) {
  if (phase_ == Phase::over) return;
  if (now >= deadline()) {
    if (phase_ == Phase::farewell) {
      phase_ = Phase::over;
    } else {
      fail(deadline_reason());
    }
  } else if (crc_done_) {
    add_to_crc();
  } else if (wants_repeat() && now >= repeat_time()) {
    repeat();
  }
}

void ZmodemSender::repeat() {
  if (phase_ == Phase::end && windowless_) {
    // What the receiver has is not known: at a wrong place it asks for the right one.
    phase_ = Phase::data;
    window_.go_back_to(
        std::max(window_.acknowledged(), size_ - std::min<std::uint64_t>(size_, window_.piece())));
  } else if (phase_ == Phase::data) {
    if (!segmented() && !window_.ever_acknowledged()) windowless_ = ++unanswered_ > 1;
    frame_open_ = false;
    window_.go_back();
  } else {
    header_due_ = true;
  }
}

void ZmodemSender::add_to_crc() {
  std::string block(std::min<std::uint64_t>(crc_step, size_ - *crc_done_), '\0');
  if (!file_->read(*crc_done_, block)) return fail("the file could not be read");
  crc_ = zmodem_crc32(block, crc_);
  *crc_done_ += block.size();
  if (*crc_done_ < size_) return;
  crc_done_.reset();
  crc_answer_ = crc_;
}

// What goes out.

std::string ZmodemSender::transmit(std::size_t room, Time now) {
  room = std::min(room, largest_batch);
  while (pending_.size() < room && produce()) {
  }
  if (room == 0 || pending_.empty()) return {};
  std::string out = std::exchange(pending_, {});
  if (out.size() > room) {
    pending_.reserve(out.size());
    pending_.assign(out, room);
    out.resize(room);
  }
  last_sent_ = now;
  window_.handed_over(out.size(), now);
  if (!pending_.empty()) return out;
  if (windowless_) gained(window_.offset(), now);
  if (phase_ == Phase::end && !std::exchange(end_sent_, true)) pace_deadline_ = now + end_limit;
  return out;
}

bool ZmodemSender::produce() {
  if (phase_ == Phase::over || crc_done_) return false;
  if (challenge_) {
    append_hex_header(ZmodemFrame::zack, *std::exchange(challenge_, std::nullopt));
  } else if (crc_answer_) {
    append_hex_header(ZmodemFrame::zcrc, *std::exchange(crc_answer_, std::nullopt));
  } else if (phase_ == Phase::data) {
    return produce_data();
  } else if (!std::exchange(header_due_, false)) {
    return false;
  } else if (phase_ == Phase::greeting) {
    append_hex_header(ZmodemFrame::zrqinit, 0);
  } else if (phase_ == Phase::offer) {
    append_offer();
  } else if (phase_ == Phase::farewell) {
    append_hex_header(ZmodemFrame::zfin, 0);
  } else {
    append_header(ZmodemFrame::zeof, size_);
  }
  return true;
}

void ZmodemSender::append_hex_header(ZmodemFrame frame, std::uint32_t value) {
  escape_.append_plain(zmodem_hex_header({frame, value}), pending_);
}

void ZmodemSender::append_header(ZmodemFrame frame, std::uint64_t value) {
  append_binary_header({frame, static_cast<std::uint32_t>(value)}, check(), escape_, pending_);
}

void ZmodemSender::append_offer() {
  constexpr std::uint32_t binary_file = 0x01000000;  // ZCBIN in F0
  std::array<char, 64> facts{};
  std::snprintf(facts.data(), facts.size(), "%llu %llo %o", static_cast<unsigned long long>(size_),
                static_cast<unsigned long long>(std::max<std::int64_t>(file_->modified(), 0)),
                file_->mode());
  std::string offer = file_->name().substr(0, longest_name);
  std::erase(offer, '\0');
  offer += '\0';
  offer += facts.data();
  offer += '\0';
  append_header(ZmodemFrame::zfile, binary_file);
  append_subpacket(offer, ZmodemEnd::wait, check(), escape_, pending_);
}

bool ZmodemSender::produce_data() {
  if (!may_send()) return false;
  if (window_.offset() == size_) {
    phase_ = Phase::end;
    header_due_ = true;
    return produce();
  }
  if (!frame_open_) {
    segment_end_ =
        segmented() ? std::min<std::uint64_t>(size_, window_.offset() + segment_limit()) : size_;
    append_header(ZmodemFrame::zdata, window_.offset());
  }
  const std::size_t length = next_piece();
  const std::uint64_t end = window_.offset() + length;
  if (windowless_) return append_piece(length, end == size_ ? ZmodemEnd::frame : ZmodemEnd::ask);
  if (end == segment_end_) return append_piece(length, ZmodemEnd::wait);
  const bool ask = !segmented() && (window_.wants_answer(length) || careful());
  return append_piece(length, ask ? ZmodemEnd::ask : ZmodemEnd::more);
}

bool ZmodemSender::append_piece(std::size_t length, ZmodemEnd end) {
  std::array<char, ZmodemWindow::largest_piece> piece;
  const auto bytes = std::span(piece).first(length);
  if (!file_->read(window_.offset(), bytes)) {
    fail("the file could not be read");
    discard_ = false;  // the driver has asked already: the cancel sequence follows what is queued
    return true;
  }
  append_subpacket({bytes.data(), bytes.size()}, end, check(), escape_, pending_);
  frame_open_ = end == ZmodemEnd::ask || end == ZmodemEnd::more;
  window_.sent(length, end == ZmodemEnd::ask || end == ZmodemEnd::wait);
  return true;
}

std::size_t ZmodemSender::next_piece() const {
  const std::size_t most = careful() ? std::min(careful_piece, window_.piece()) : window_.piece();
  const std::uint64_t left = (segmented() && frame_open_ ? segment_end_ : size_) - window_.offset();
  return static_cast<std::size_t>(std::min<std::uint64_t>({most, left, segment_limit()}));
}

std::size_t ZmodemSender::segment_limit() const {
  if (receiver_.buffer == 0) return receiver_.overlapped ? window_.segment() : window_.piece();
  return std::min(receiver_.buffer, window_.segment());
}

bool ZmodemSender::may_send() const {
  if (windowless_ || window_.acknowledged() == window_.offset()) return true;
  if (window_.offset() == size_) return false;
  return segmented() ? frame_open_ : window_.has_room(next_piece());
}

}  // namespace orvex
