#include "console/trace.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <system_error>
#include <utility>

#include "base/run_time_error.h"
#include "link/frame.h"
#include "setupfiles/symbols.h"

namespace orvex {
namespace {

/// No frame of the scanner is longer; what goes on is shown as it comes.
constexpr std::size_t most_pending = 4096;

std::string_view name_of(unsigned char c) {
  const auto symbols = control_symbols();
  const auto symbol = std::ranges::find(symbols, static_cast<int>(c), &ControlSymbol::index);
  return symbol == symbols.end() ? std::string_view{} : symbol->name;
}

std::string hex(unsigned char c) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  return {digits[c >> 4], digits[c & 15]};
}

/// A character inside of quotes, in UTF-8.
std::string quoted(unsigned char c) {
  if (c == '"' || c == '\\') return {'\\', static_cast<char>(c)};
  if (c < 0x80) return {static_cast<char>(c)};
  if (c < 0xA0) return "\\x" + hex(c);
  return {static_cast<char>(0xC0 | (c >> 6)), static_cast<char>(0x80 | (c & 0x3F))};
}

/// Bytes of `text` that make one line of the trace; 0 if the rest of it has yet to come.
std::size_t whole(std::string_view text) {
  if (text.front() == SOH) {
    const auto end = text.find(EOT);
    return end == std::string_view::npos ? 0 : end + 1;
  }
  if (text.front() == ACK || text.front() == NAK) return 1;
  const auto end = text.find_first_of(std::string{SOH, ACK, NAK, '\n'});
  if (end == std::string_view::npos) return 0;
  return text[end] == '\n' ? end + 1 : end;
}

}  // namespace

std::string traced_text(std::string_view bytes) {
  std::string shown;
  bool in_quotes = false;
  const auto quote = [&](bool wanted) {
    if (in_quotes == wanted) return;
    shown += wanted && !shown.empty() ? " \"" : "\"";
    in_quotes = wanted;
  };
  for (const char byte : bytes) {
    const auto c = static_cast<unsigned char>(byte);
    const auto name = name_of(c);
    quote(name.empty());
    if (name.empty()) {
      shown += quoted(c);
    } else {
      if (!shown.empty()) shown += ' ';
      shown += name;
    }
  }
  quote(false);
  return shown;
}

std::string traced_hex(std::string_view bytes) {
  std::string shown;
  for (const char byte : bytes) {
    if (!shown.empty()) shown += ' ';
    shown += hex(static_cast<unsigned char>(byte));
  }
  return shown;
}

Trace::Trace(const Clock& clock, const std::filesystem::path& path)
    : clock_(clock), file_(path, std::ios::binary) {
  if (!file_) throw error_of({errno, std::generic_category()});
}

void Trace::sent(std::string_view bytes, bool transfer) {
  take_whole(in_);
  write(in_, std::exchange(in_.pending, {}));
  take(out_, bytes, transfer);
}

void Trace::received(std::string_view bytes, bool transfer) {
  if (bytes.empty()) return;
  write(out_, std::exchange(out_.pending, {}));
  take(in_, bytes, transfer);
}

void Trace::event(std::string_view text) {
  flush();
  write_line(clock_.now(), '=', std::string(text));
}

bool Trace::flush() {
  for (Direction* direction : {&in_, &out_}) {
    write(*direction, std::exchange(direction->pending, {}));
  }
  return static_cast<bool>(file_.flush());
}

void Trace::take(Direction& direction, std::string_view bytes, bool transfer) {
  if (transfer) {
    write(direction, std::exchange(direction.pending, {}));
    write_line(clock_.now(), direction.mark, traced_hex(bytes));
    return;
  }
  if (direction.pending.empty()) direction.begun = clock_.now();
  direction.pending += bytes;
  take_whole(direction);
  if (direction.pending.size() < most_pending) return;
  write(direction, std::exchange(direction.pending, {}));
}

void Trace::take_whole(Direction& direction) {
  while (!direction.pending.empty()) {
    const auto size = whole(direction.pending);
    if (size == 0) return;
    write(direction, std::string_view(direction.pending).substr(0, size));
    direction.pending.erase(0, size);
    direction.begun = clock_.now();
  }
}

void Trace::write(const Direction& direction, std::string_view bytes) {
  if (!bytes.empty()) write_line(direction.begun, direction.mark, traced_text(bytes));
}

void Trace::write_line(Time at, char mark, const std::string& text) {
  const std::chrono::duration<double> seconds = at;
  std::array<char, 32> time{};
  std::snprintf(time.data(), time.size(), "%.6f", seconds.count());
  file_ << time.data() << ' ' << mark << ' ' << text << '\n';
}

}  // namespace orvex
