#include "upgrade/zmodem_escape.h"

#include <cstddef>

namespace orvex {
namespace {

constexpr char escape_byte = 0x18;
constexpr unsigned turned_bit = 0x40;

}  // namespace

ZmodemEscape::ZmodemEscape(bool all_controls) {
  for (std::size_t byte = 0; all_controls && byte < rules_.size(); ++byte) {
    if ((byte & 0x60) == 0) rules_[byte] = Rule::escaped;
  }
  for (const std::size_t byte : {0x10U, 0x11U, 0x13U, 0x18U, 0x90U, 0x91U, 0x93U}) {
    rules_[byte] = Rule::escaped;
  }
  for (const std::size_t byte : {0x0DU, 0x8DU}) {
    if (!all_controls) rules_[byte] = Rule::escaped_behind_at;
  }
}

void ZmodemEscape::append(std::string_view bytes, std::string& wire) {
  const std::size_t start = wire.size();
  wire.resize(start + 2 * bytes.size());
  char* to = wire.data() + start;
  unsigned char last = last_;
  for (const char c : bytes) {
    auto byte = static_cast<unsigned char>(c);
    const Rule rule = rules_[byte];
    if (rule == Rule::escaped || (rule == Rule::escaped_behind_at && (last & 0x7F) == 0x40)) {
      *to++ = escape_byte;
      byte = static_cast<unsigned char>(byte ^ turned_bit);
    }
    *to++ = static_cast<char>(byte);
    last = byte;
  }
  last_ = last;
  wire.resize(static_cast<std::size_t>(to - wire.data()));
}

void ZmodemEscape::append_plain(std::string_view bytes, std::string& wire) {
  wire += bytes;
  if (!bytes.empty()) last_ = static_cast<unsigned char>(bytes.back());
}

}  // namespace orvex
