#pragma once

#include <algorithm>
#include <string>

namespace orvex::simulator {

/// What comes from the line, a firmware file or a command may hold anything; a terminal gets "."
/// for what isn't plain text.
inline std::string printable(std::string text) {
  std::ranges::replace_if(
      text, [](unsigned char c) { return c < 0x20 || c > 0x7E; }, '.');
  return text;
}

}  // namespace orvex::simulator
