#include "transfer/zmodem_escape.h"

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
  const auto rule_of = [this](char c) { return rules_[static_cast<unsigned char>(c)]; };
  while (!bytes.empty()) {
    std::size_t plain = 0;
    while (plain < bytes.size() && rule_of(bytes[plain]) == Rule::plain) ++plain;
    append_plain(bytes.substr(0, plain), wire);
    bytes.remove_prefix(plain);
    if (bytes.empty()) return;
    const bool kept = rule_of(bytes.front()) == Rule::escaped_behind_at && (last_ & 0x7F) != 0x40;
    if (!kept) wire += escape_byte;
    last_ = static_cast<unsigned char>(bytes.front()) ^ (kept ? 0U : turned_bit);
    wire += static_cast<char>(last_);
    bytes.remove_prefix(1);
  }
}

void ZmodemEscape::append_plain(std::string_view bytes, std::string& wire) {
  wire += bytes;
  if (!bytes.empty()) last_ = static_cast<unsigned char>(bytes.back());
}

}  // namespace orvex
