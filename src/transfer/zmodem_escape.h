#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvex {

/// Puts bytes on the wire so that modems, terminals and flow control leave them alone: hexadecimal
/// 10, 11, 13, 18, 90, 91 and 93 always go as 18 and the byte with bit 6 turned round, 0D and 8D
/// behind a 40 or C0 on the wire, and all of 00-1F and 80-9F if the receiver asks for it.
class ZmodemEscape {
 public:
  explicit ZmodemEscape(bool all_controls = false);

  /// Adds `bytes` to `wire`, escaped: at most two bytes for each.
  void append(std::string_view bytes, std::string& wire);
  /// Adds `bytes` to `wire` as they are.
  void append_plain(std::string_view bytes, std::string& wire);

 private:
  enum class Rule : std::uint8_t { plain, escaped, escaped_behind_at };

  std::array<Rule, 256> rules_{};
  unsigned last_ = 0;  // byte on the wire
};

}  // namespace orvex
