#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>

#include "base/clock.h"
#include "transfer/zmodem_parser.h"

namespace orvex::testing {

/// The steps of a transfer at which a receiver gives an answer.
enum class Step { never, start, offer, data, end, farewell };

/// How a receiver behaves, and where it stops behaving.
struct ReceiverScript {
  std::uint32_t zrinit = 0x23000000;  // CANFC32, CANOVIO, CANFDX
  Time write_time{};                  // for each subpacket to be answered, before its answer
  bool deaf_while_writing = false;    // else it hears all
  Time erase_time{};                  // for each ZFILE, before its answer
  int erases = 1;                     // ZFILEs from which on it has no more to erase
  std::size_t keeps = 0;              // bytes heard while erasing or writing; it is deaf to others
  bool answers_requests = true;       // ZCRCQ
  bool answers_waits = true;          // ZCRCW
  bool answers_last = true;           // those at the end of the file
  bool skips = false;                 // answers ZFILE by ZSKIP
  bool complains = true;              // at once; else where it is asked next
  std::uint32_t first_place = 0;
  Step turns_bad = Step::never;    // there, and from then on, it only says `says`
  std::uint64_t turns_bad_at = 0;  // bytes received, if turns_bad is data
  std::string says = {};
  Time every{};          // 0: once
  bool takes_on = true;  // it still takes what it hears
};

/// The receiving side of ZMODEM, strict: a scanner's loader, as patient and as odd as its script.
class ScriptedReceiver {
 public:
  explicit ScriptedReceiver(ReceiverScript script) : script_(std::move(script)) {}

  void hear(std::string_view bytes, Time now);
  /// What it says by `now`; it repeats its last answer after 10 s without a byte.
  std::string speak(Time now);

  std::string file;   // received and found intact
  std::string offer;  // the subpacket of the last ZFILE
  std::uint32_t offer_flags = 0;
  bool cancelled = false;  // five CAN heard
  bool overrun = false;    // a segment beyond the buffer, or bytes while writing
  bool over = false;       // OO heard after ZFIN
  Time turned_at{};        // when it turned bad
  int complaints = 0;      // ZRPOS for damaged or misplaced data
  int erased = 0;          // times

 private:
  enum class Place { hunting, data, check };

  void hear_byte(char byte);
  void take(char byte);
  void take_data(char byte);
  void on_header(const ZmodemHeader& header);
  void on_subpacket(bool intact);
  void on_offer(bool intact);
  void on_data(bool intact);
  void on_astray(char end);
  void complain();
  void answer(Step step, ZmodemFrame frame, std::uint64_t value, Time delay = {});

  ReceiverScript script_;
  ZmodemParser parser_;
  Place place_ = Place::hunting;
  ZmodemFrame frame_ = ZmodemFrame::zrqinit;
  std::uint32_t flags_ = 0;
  std::string body_;
  std::string check_;
  bool escaped_ = false;
  bool turned_ = false;
  int cancels_ = 0;
  std::string tail_;  // after ZFIN
  std::size_t segment_ = 0;
  std::uint64_t offered_ = 0;  // bytes
  Time now_{};
  Time writing_until_{};
  Time deaf_until_{};
  std::string kept_;     // heard while deaf
  bool astray_ = false;  // misses data and has not said so
  Time last_heard_{};
  Time next_bad_{};
  std::deque<std::pair<Time, std::string>> answers_;
  std::string last_answer_;
};

}  // namespace orvex::testing
