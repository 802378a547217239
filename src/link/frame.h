#pragma once

#include <string>
#include <string_view>

namespace orvex {

// The bytes of the line to the scanner. docs/wire-format.md has the whole.
inline constexpr char SOH = 0x01;
inline constexpr char EOT = 0x04;
inline constexpr char ACK = 0x06;
inline constexpr char NAK = 0x15;

/// SOH, the text, EOT.
std::string frame_of(std::string_view text);

/// True for a text that is one tag `<NAME:>` and nothing else, NAME being six upper-case letters
/// or digits. Only such a frame is answered by a reply after its ACK.
bool is_query(std::string_view text);

}  // namespace orvex
