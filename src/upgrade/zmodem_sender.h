#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "link/file_engine.h"
#include "upgrade/zmodem_codec.h"
#include "upgrade/zmodem_escape.h"
#include "upgrade/zmodem_parser.h"
#include "upgrade/zmodem_window.h"

namespace orvex {

/// Sends one file by ZMODEM.
///
/// A receiver that answers while it receives, and names no buffer limit, is asked for answers all
/// along: no more than ZmodemWindow allows are sent without one. Any other receiver gets
/// segments that fit its buffer, at most 4 KiB, and the answer to each is waited for. Memory: some
/// 100 KiB at most, whatever the size of the file. No call reads or encodes more than 64 KiB.
class ZmodemSender final : public FileEngine {
 public:
  /// `bits_per_second` is the rate of the line (0: not known); see ZmodemWindow. A file of 4 GiB
  /// and more fails at once: positions have 32 bits.
  explicit ZmodemSender(std::unique_ptr<FileSource> file, Time now,
                        std::uint32_t bits_per_second = 115200);

  void receive(std::string_view bytes, Time now) override;
  void tick(Time now) override;
  std::string transmit(std::size_t room, Time now) override;
  bool take_discard() override;
  std::size_t most_unsent() const override;
  std::optional<Time> wake() const override;
  void cancel(Time now) override;
  State state() const override { return state_; }
  bool finished() const override { return phase_ == Phase::over && pending_.empty(); }
  std::uint64_t progress() const override;
  std::uint64_t total() const override { return size_; }
  std::string_view reason() const override { return reason_; }

 private:
  /// What is on the line: ZRQINIT, ZFILE, the data, ZEOF, ZFIN, nothing more.
  enum class Phase { greeting, offer, data, end, farewell, over };

  // What the receiver says (zmodem_sender_answers.cpp).
  void on_header(const ZmodemHeader& header, Time now);
  void on_ready(const ZmodemHeader& zrinit, Time now);
  void on_position(std::uint32_t place, Time now);
  void on_acknowledged(std::uint32_t place, Time now);
  void on_repeat_wish(Time now);
  void on_crc_wish(Time now);
  void on_challenge(std::uint32_t value);
  void on_cancelled(Time now);
  bool count_attempt(std::uint64_t place);
  bool count_favour();
  void gained(std::uint64_t place, Time now);
  void restart_at(std::uint64_t place);
  void complete(Time now);
  void fail(std::string_view why);
  void fail_quietly(std::string_view why);

  // Time.
  Time deadline() const;
  Time silence_deadline() const;
  std::string_view deadline_reason() const;
  Time repeat_time() const;
  bool wants_repeat() const;
  void repeat();
  void add_to_crc();

  // What goes out.
  bool produce();
  void append_hex_header(ZmodemFrame frame, std::uint32_t value);
  void append_header(ZmodemFrame frame, std::uint64_t value);
  void append_offer();
  bool produce_data();
  bool append_piece(std::size_t length, ZmodemEnd end);
  std::size_t next_piece() const;
  bool may_send() const;
  bool careful() const { return window_.offset() < careful_until_; }
  bool segmented() const { return !receiver_.full_duplex || segment_limited(); }
  bool segment_limited() const { return !receiver_.overlapped || receiver_.buffer > 0; }
  std::size_t segment_limit() const;
  ZmodemCheck check() const { return receiver_.crc32 ? ZmodemCheck::crc32 : ZmodemCheck::crc16; }

  const std::unique_ptr<FileSource> file_;
  const std::uint64_t size_;
  ZmodemWindow window_;

  State state_ = State::running;
  Phase phase_ = Phase::greeting;
  std::string_view reason_;
  ZmodemParser parser_;
  ZmodemReceiver receiver_;
  ZmodemEscape escape_;

  std::string pending_;  // for the line, not handed over yet
  bool discard_ = false;
  bool header_due_ = true;   // of the phase
  bool frame_open_ = false;  // the receiver expects a further subpacket
  bool end_sent_ = false;    // ZEOF was handed over whole
  int unanswered_ = 0;       // times that the first window stayed without an answer
  bool windowless_ = false;  // the receiver does not answer requests

  std::uint64_t segment_end_ = 0;
  std::uint64_t gained_ = 0;     // the most acknowledged so far (windowless: handed over)
  std::uint64_t pace_mark_ = 0;  // gained_ when pace_deadline_ was set

  std::uint64_t attempt_place_ = 0;
  std::uint64_t careful_until_ = 0;  // a bad line gets small pieces up to there
  int attempts_ = 0;                 // to send from attempt_place_
  int favours_ = 0;                  // ZCRC and ZCHALLENGE answered
  std::optional<std::uint32_t> challenge_;
  std::optional<std::uint64_t> crc_done_;  // bytes the running computation has covered
  std::optional<std::uint32_t> crc_answer_;
  std::uint32_t crc_ = 0;

  const Time began_;
  Time last_sent_;
  Time last_heard_;
  Time pace_deadline_{};  // for the next KiB; for the ZRINIT behind the ZEOF
  Time farewell_deadline_{};
  std::optional<Time> cancel_deadline_;  // a CAN heard so early may belong to an earlier transfer
};

}  // namespace orvex
