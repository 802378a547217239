#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "transfer/zmodem_codec.h"

namespace orvex {

/// Finds headers in what the receiver sends, one byte at a time: hex ones with digits of either
/// case, and binary ones with CRC-16 or CRC-32. Anything else is passed over. Holds 9 bytes,
/// whatever comes.
class ZmodemParser {
 public:
  /// cancelled: five CAN (hexadecimal 18) in a row.
  /// damaged: what was a header once; its check is wrong, it breaks off, or its 14 digits have lost
  /// their beginning.
  enum class Event { none, header, damaged, cancelled };

  /// Takes the next byte. After Event::header, header() is the one that this byte completed.
  Event feed(char byte);
  const ZmodemHeader& header() const { return header_; }

 private:
  enum class Place { outside, pad, type, hex, binary };

  void begin(Place place, std::size_t length);
  void choose_type(unsigned char byte);
  Event break_off(unsigned char byte);
  Event pass_over(unsigned char byte);
  Event feed_hex(unsigned char byte);
  Event feed_binary(unsigned char byte);
  Event store(unsigned byte);

  Place place_ = Place::outside;
  int cancels_ = 0;
  int digits_ = 0;  // in a row, outside of a header
  std::array<char, 9> body_{};
  std::size_t length_ = 0;  // of the whole body
  std::size_t filled_ = 0;
  bool half_ = false;  // behind the first of two hex digits, or behind an escape
  unsigned high_digit_ = 0;
  ZmodemHeader header_;
};

}  // namespace orvex
