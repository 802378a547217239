#include "testing/virtual/scripted_receiver.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "transfer/zmodem_crc.h"

namespace orvex::testing {

void ScriptedReceiver::hear(std::string_view bytes, Time now) {
  now_ = now;
  if (!bytes.empty()) last_heard_ = now;
  if (now < writing_until_ && bytes.size() > 1) overrun = true;
  if (now >= deaf_until_) {
    for (const char byte : std::exchange(kept_, {})) hear_byte(byte);
  }
  for (const char byte : bytes) hear_byte(byte);
}

void ScriptedReceiver::hear_byte(char byte) {
  if (now_ >= deaf_until_) {
    take(byte);
  } else if (kept_.size() < script_.keeps) {
    kept_ += byte;
  }
}

std::string ScriptedReceiver::speak(Time now) {
  std::string said;
  if (now < deaf_until_) return said;
  if (turned_ && script_.every > Time{} && now >= next_bad_) {
    next_bad_ = now + script_.every;
    said = script_.says;
  }
  if (!turned_ && now - last_heard_ >= std::chrono::seconds(10)) {
    last_heard_ = now;
    said = last_answer_;
  }
  for (; !answers_.empty() && answers_.front().first <= now; answers_.pop_front()) {
    said += answers_.front().second;
  }
  return said;
}

void ScriptedReceiver::take(char byte) {
  cancels_ = byte == '\x18' ? cancels_ + 1 : 0;
  cancelled = cancelled || cancels_ == 5;
  if (frame_ == ZmodemFrame::zfin) over = (tail_ += byte).find("OO") != std::string::npos;
  if (place_ != Place::hunting) return take_data(byte);
  if (parser_.feed(byte) == ZmodemParser::Event::header) on_header(parser_.header());
}

void ScriptedReceiver::take_data(char byte) {
  if (!escaped_ && byte == '\x18') {
    escaped_ = true;
    return;
  }
  const bool end = escaped_ && place_ == Place::data && byte >= 'h' && byte <= 'k';
  if (escaped_ && !end) byte = static_cast<char>(byte ^ 0x40);
  escaped_ = false;
  if (place_ == Place::check) {
    check_ += byte;
    const bool long_check = (script_.zrinit & 0x20000000) != 0;
    if (check_.size() < (long_check ? 4U : 2U)) return;
    // A CRC over data and CRC is the same whatever the data.
    return on_subpacket(long_check ? zmodem_crc32(body_ + check_) == 0x2144DF1C
                                   : zmodem_crc16(body_ + check_) == 0);
  }
  body_ += byte;
  if (end) place_ = Place::check;
  if (body_.size() > 1025) on_subpacket(false);
}

void ScriptedReceiver::on_header(const ZmodemHeader& header) {
  frame_ = header.frame;
  if (frame_ == ZmodemFrame::zfile) flags_ = header.value;
  const bool here = header.value == file.size();
  if (frame_ == ZmodemFrame::zrqinit) answer(Step::start, ZmodemFrame::zrinit, script_.zrinit);
  if (frame_ == ZmodemFrame::zfin) answer(Step::farewell, ZmodemFrame::zfin, 0);
  if (frame_ == ZmodemFrame::zeof && here) answer(Step::end, ZmodemFrame::zrinit, script_.zrinit);
  if (frame_ == ZmodemFrame::zeof && !here && !script_.complains) complain();
  if (frame_ == ZmodemFrame::zdata) astray_ = !here;
  if (frame_ == ZmodemFrame::zdata && !here && script_.complains) return complain();
  if (frame_ == ZmodemFrame::zfile || frame_ == ZmodemFrame::zdata) place_ = Place::data;
}

void ScriptedReceiver::on_subpacket(bool intact) {
  const char end = body_.back();
  place_ = !intact || end == 'h' || end == 'k' ? Place::hunting : Place::data;
  if (frame_ == ZmodemFrame::zdata) {
    on_data(intact);
  } else {
    on_offer(intact);
  }
  body_.clear();
  check_.clear();
}

void ScriptedReceiver::on_offer(bool intact) {
  if (!intact) return answer(Step::offer, ZmodemFrame::znak, 0);
  if (script_.skips) return answer(Step::offer, ZmodemFrame::zskip, 0);
  offer = body_.substr(0, body_.size() - 1);
  offer_flags = flags_;
  offered_ = std::strtoull(offer.substr(offer.find('\0') + 1).c_str(), nullptr, 10);
  file.resize(script_.first_place);
  const bool erase = script_.erase_time > Time{} && erased < script_.erases;
  if (erase) {
    ++erased;
    deaf_until_ = now_ + script_.erase_time;
  }
  answer(Step::offer, ZmodemFrame::zrpos, script_.first_place, erase ? script_.erase_time : Time{});
}

void ScriptedReceiver::on_data(bool intact) {
  if (turned_ && !script_.takes_on) return;
  const char end = body_.back();
  astray_ = astray_ || !intact;
  if (astray_ && script_.complains) return complain();
  if (astray_) return on_astray(intact ? end : 'i');
  file.append(body_, 0, body_.size() - 1);
  segment_ += body_.size() - 1;
  const std::size_t buffer = script_.zrinit & 0xFFFF;
  overrun = overrun || (buffer > 0 && segment_ > buffer);
  if (end == 'k') segment_ = 0;
  const Step step = file.size() >= script_.turns_bad_at ? Step::data : Step::never;
  if (file.size() == offered_ && !script_.answers_last) return;
  if ((end == 'k' && script_.answers_waits) || (end == 'j' && script_.answers_requests)) {
    answer(step, ZmodemFrame::zack, file.size(), script_.write_time);
  }
}

// Without a word it reads on, and drops it, up to where it is asked.
void ScriptedReceiver::on_astray(char end) {
  const bool asked = end == 'j' || end == 'k';
  place_ = asked || end == 'h' ? Place::hunting : Place::data;
  if (asked) complain();
}

void ScriptedReceiver::complain() {
  ++complaints;
  segment_ = 0;
  answer(Step::never, ZmodemFrame::zrpos, file.size());
}

void ScriptedReceiver::answer(Step step, ZmodemFrame frame, std::uint64_t value, Time delay) {
  if (turned_) return;
  if (step != Step::never && step == script_.turns_bad) {
    turned_ = true;
    turned_at = now_;
    next_bad_ = now_ + script_.every;
    answers_.emplace_back(now_, script_.says);
    return;
  }
  last_answer_ = zmodem_hex_header({frame, static_cast<std::uint32_t>(value)});
  if (delay > Time{} && now_ >= deaf_until_) writing_until_ = now_ + delay;
  if (script_.deaf_while_writing) deaf_until_ = std::max(deaf_until_, writing_until_);
  answers_.emplace_back(now_ + delay, last_answer_);
}

}  // namespace orvex::testing
