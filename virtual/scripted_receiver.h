#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>

#include "upgrade/zmodem_parser.h"
#include "window/clock.h"

namespace orvex::test {

/// The steps of a transfer at which a receiver gives an answer.
enum class Step { never, start, offer, data, end, farewell };

/// How a receiver behaves, and where it stops behaving.
struct ReceiverScript {
  std::uint32_t zrinit = 0x23000000;  // CANFC32, CANOVIO, CANFDX
  Time write_time{};                  // for each subpacket to be answered, before its answer
  bool answers_requests = true;       // ZCRCQ
  std::uint32_t first_place = 0;
  Step turns_bad = Step::never;    // there, and from then on, it only says `says`
  std::uint64_t turns_bad_at = 0;  // bytes received, where turns_bad is data
  std::string says = {};
  Time every{};  // 0: once
};

/// The receiving side of ZMODEM, strict.
class ScriptedReceiver {
 public:
  explicit ScriptedReceiver(ReceiverScript script) : script_(std::move(script)) {}

  void hear(std::string_view bytes, Time now);
  /// What it says by `now`; it repeats its last answer after 10 s without a byte.
  std::string speak(Time now);

  std::string file;        // received and found intact
  std::string offer;       // the subpacket of the last ZFILE
  bool cancelled = false;  // five CAN heard
  bool overrun = false;    // a segment beyond the buffer, or bytes while writing
  bool over = false;       // OO heard behind ZFIN
  Time turned_at{};        // when it turned bad
  int complaints = 0;      // ZRPOS for damaged or misplaced data

 private:
  enum class Place { hunting, data, check };

  void take(char byte);
  void take_data(char byte);
  void on_header(const ZmodemHeader& header);
  void on_subpacket(bool intact);
  void on_data(bool intact);
  void complain();
  void answer(Step step, ZmodemFrame frame, std::uint64_t value, Time delay = {});

  ReceiverScript script_;
  ZmodemParser parser_;
  Place place_ = Place::hunting;
  ZmodemFrame frame_ = ZmodemFrame::zrqinit;
  std::string body_;
  std::string check_;
  bool escaped_ = false;
  bool turned_ = false;
  int cancels_ = 0;
  std::string tail_;  // behind ZFIN
  std::size_t segment_ = 0;
  Time now_{};
  Time writing_until_{};
  Time last_heard_{};
  Time next_bad_{};
  std::deque<std::pair<Time, std::string>> answers_;
  std::string last_answer_;
};

}  // namespace orvex::test
