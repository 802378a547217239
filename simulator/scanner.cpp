#include "simulator/scanner.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace orvex::simulator {
namespace {

constexpr char SOH = 0x01;
constexpr char EOT = 0x04;
constexpr std::string_view ACK = "\x06";
constexpr std::string_view NAK = "\x15";
constexpr std::string_view load_tag = "<A1CODE=Z>";
constexpr std::string_view factory_tag = "<FACDEF=1>";
constexpr std::string_view ping_tag = "<TXPING:>";
/// A longer frame is noise.
constexpr std::size_t most_in_frame = 4096;

/// What a byte looks like at a wrong rate: never an answer.
char as_junk(char byte) {
  return static_cast<char>(static_cast<unsigned char>(byte) | 0x80);
}

}  // namespace

Scanner::Scanner(Options the_options, MakeLoader make_loader)
    : options(std::move(the_options)), make_loader_(std::move(make_loader)) {}

void Scanner::hear(std::string_view bytes, int line_rate, Time now) {
  if (waits_for_restart_) return;
  if (line_rate != rate()) {
    frame_.reset();
    if (!faults.junk_at_wrong_rate || bytes.empty()) return;
    std::string junk(bytes);
    std::ranges::transform(junk, junk.begin(), as_junk);
    say_later(now, junk);
    return;
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (loader_) {
      loader_->hear(bytes.substr(i), now);
      look_after_loader();
      return;
    }
    if (bytes[i] == SOH) {
      frame_.emplace();
    } else if (frame_ && bytes[i] == EOT) {
      const std::string text = *std::exchange(frame_, std::nullopt);
      take(text, now);
    } else if (frame_ && frame_->size() < most_in_frame) {
      *frame_ += bytes[i];
    }
  }
}

std::string Scanner::say(Time now) {
  while (!words_.empty() && words_.front().at <= now) {
    const Word word = std::move(words_.front());
    words_.pop_front();
    if (word.then) word.then(word.at);
    if (!word.bytes.empty()) return word.bytes;
  }
  if (!loader_) return {};
  auto bytes = loader_->say(now);
  if (bytes.empty()) look_after_loader();
  return bytes;
}

std::optional<Time> Scanner::due() const {
  auto next = loader_ ? loader_->due() : std::nullopt;
  if (!words_.empty()) next = std::min(next.value_or(Time::max()), words_.front().at);
  return next;
}

int Scanner::rate() const {
  const std::string& text = parameters["RSBAUD"];
  int number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

void Scanner::rate(int bits_a_second) {
  parameters.apply("<RSBAUD=" + std::to_string(bits_a_second) + ">");
}

void Scanner::restart() {
  constexpr std::size_t version_at = 80;
  constexpr std::size_t version_size = 7;
  loader_.reset();
  words_.clear();
  frame_.reset();
  if (!std::exchange(waits_for_restart_, false)) return;
  if (loaded_file_.size() < version_at + version_size) return;
  options.identity.application1 = loaded_file_.substr(version_at, version_size);
  rate(options.start_up_rate);
}

void Scanner::take(std::string_view text, Time now) {
  frames.emplace_back(text);
  fault_applies_ = text.starts_with(faults.only);
  if (fault_applies_ && faults.unplug_after > 0 && --faults.unplug_after == 0) {
    unplug_wanted_ = true;
    return;
  }
  if (befalls(faults.silent)) return;
  if (befalls(faults.refused)) {
    say_later(now + options.ack_delay, std::string(NAK));
    return;
  }
  answer(text, now);
}

void Scanner::answer(std::string_view text, Time now) {
  if (text == ping_tag) {
    acknowledge(now);
  } else if (text == factory_tag) {
    acknowledge(now, [this](Time) { parameters = Parameters(); });
  } else if (text == load_tag && make_loader_) {
    acknowledge(now, [this](Time at) { loader_ = make_loader_(at); });
  } else if (auto reply = reply_to(text)) {
    acknowledge(now, {}, std::move(*reply) + "\r\n");
  } else if (Parameters changed = parameters; !text.empty() && changed.apply(text)) {
    if (befalls(faults.ignored)) changed = parameters;
    acknowledge(now, [this, changed](Time) { parameters = changed; });
  } else {
    say_later(now + options.ack_delay, std::string(NAK));
  }
}

void Scanner::acknowledge(Time now, Then then, std::string reply) {
  Time at = now + options.ack_delay;
  std::string bytes(ACK);
  if (fault_applies_) bytes.insert(0, faults.junk_before_ack);
  if (befalls(faults.lost_acks)) bytes.clear();
  if (befalls(faults.late_acks)) at += faults.late_by;
  say_later(at, bytes, std::move(then));
  if (reply.empty() || bytes.empty()) return;
  say_later(at + options.reply_delay, fault_applies_ ? spoilt(std::move(reply)) : reply);
}

void Scanner::say_later(Time at, std::string bytes, Then then) {
  const auto behind = std::ranges::upper_bound(words_, at, {}, &Word::at);
  words_.insert(behind, {at, std::move(bytes), std::move(then)});
}

std::optional<std::string> Scanner::reply_to(std::string_view query) const {
  const Identity& identity = options.identity;
  if (query == "<SETPAR:>") return parameters.frames();
  if (query == "<APP1RV:>") return identity.application1;
  if (query == "<APP2RV:>") return identity.application2;
  if (query == "<HARDRV:>") return identity.hardware;
  if (query == "<FINGER:>") return identity.model;
  if (query == "<WEBSIT:>") return identity.web;
  if (query == "<SERIAL:>") return identity.serial;
  return std::nullopt;
}

std::string Scanner::spoilt(std::string reply) const {
  constexpr std::size_t end_size = 2;  // CR LF
  if (faults.other_reply) return *faults.other_reply;
  if (faults.frame_without_end) {
    const auto last = reply.rfind(EOT);
    if (last != std::string::npos) reply.erase(last, 1);
  }
  if (reply.size() < faults.padded_reply) {
    reply.insert(reply.size() - end_size, faults.padded_reply - reply.size(), '-');
  }
  if (faults.reply_without_end) reply.resize(reply.size() - end_size);
  if (faults.cut_reply) reply.resize(std::min(reply.size(), *faults.cut_reply));
  return reply;
}

bool Scanner::befalls(int& count) const {
  if (!fault_applies_ || count == 0) return false;
  if (count > 0) --count;
  return true;
}

void Scanner::look_after_loader() {
  if (!loader_ || !loader_->finished()) return;
  if (loader_->due()) return;  // it still has something to say
  auto file = loader_->file();
  loader_.reset();
  if (!file) return;
  loaded_file_ = std::move(*file);
  waits_for_restart_ = true;
  if (options.restarts_itself) restart();
}

}  // namespace orvex::simulator
