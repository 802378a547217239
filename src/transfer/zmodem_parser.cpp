#include "transfer/zmodem_parser.h"

#include <optional>
#include <string_view>

#include "transfer/zmodem_crc.h"

namespace orvex {
namespace {

constexpr unsigned char pad = '*';
constexpr unsigned char escape_byte = 0x18;
constexpr std::size_t crc16_body = 7;
constexpr std::size_t crc32_body = 9;
constexpr int digits_of_a_header = 12;  // of 14: two may be lost with its beginning

bool is_flow_control(unsigned char byte) {
  return (byte & 0x7F) == 0x11 || (byte & 0x7F) == 0x13;
}

std::optional<unsigned> hex_digit(unsigned char byte) {
  if (byte >= '0' && byte <= '9') return byte - unsigned{'0'};
  if (byte >= 'a' && byte <= 'f') return byte - unsigned{'a'} + 10;
  if (byte >= 'A' && byte <= 'F') return byte - unsigned{'A'} + 10;
  return std::nullopt;
}

std::uint32_t little_endian(std::string_view bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) {
    value = (value << 8) | static_cast<unsigned char>(bytes[i]);
  }
  return value;
}

bool check_holds(std::string_view body) {
  const std::string_view covered = body.substr(0, 5);
  if (body.size() == crc16_body) return zmodem_crc16(body) == 0;  // with its CRC behind: always 0
  return zmodem_crc32(covered) == little_endian(body.substr(5));
}

}  // namespace

ZmodemParser::Event ZmodemParser::feed(char c) {
  const auto byte = static_cast<unsigned char>(c);
  cancels_ = byte == escape_byte ? cancels_ + 1 : 0;
  if (cancels_ == 5) {
    cancels_ = 0;
    place_ = Place::outside;
    return Event::cancelled;
  }
  switch (place_) {
    case Place::hex:
      return feed_hex(byte);
    case Place::binary:
      return feed_binary(byte);
    case Place::type:
      choose_type(byte);
      return Event::none;
    case Place::pad:
      if (byte == escape_byte) {
        place_ = Place::type;
        return Event::none;
      }
      [[fallthrough]];
    case Place::outside:
      return pass_over(byte);
  }
  return Event::none;
}

ZmodemParser::Event ZmodemParser::pass_over(unsigned char byte) {
  place_ = byte == pad ? Place::pad : Place::outside;
  digits_ = hex_digit(byte) ? digits_ + 1 : 0;
  return digits_ == digits_of_a_header ? Event::damaged : Event::none;
}

ZmodemParser::Event ZmodemParser::break_off(unsigned char byte) {
  place_ = byte == pad ? Place::pad : Place::outside;
  return Event::damaged;
}

void ZmodemParser::begin(Place place, std::size_t length) {
  place_ = place;
  length_ = length;
  filled_ = 0;
  half_ = false;
}

void ZmodemParser::choose_type(unsigned char byte) {
  if (byte == 'A') {
    begin(Place::binary, crc16_body);
  } else if (byte == 'B') {
    begin(Place::hex, crc16_body);
  } else if (byte == 'C') {
    begin(Place::binary, crc32_body);
  } else {
    place_ = byte == pad ? Place::pad : Place::outside;
  }
}

ZmodemParser::Event ZmodemParser::feed_hex(unsigned char byte) {
  if (is_flow_control(byte)) return Event::none;
  const auto digit = hex_digit(byte);
  if (!digit) return break_off(byte);
  half_ = !half_;
  if (half_) {
    high_digit_ = *digit;
    return Event::none;
  }
  return store(high_digit_ << 4 | *digit);
}

ZmodemParser::Event ZmodemParser::feed_binary(unsigned char byte) {
  if (is_flow_control(byte)) return Event::none;
  if (!half_) {
    half_ = byte == escape_byte;
    return half_ ? Event::none : store(byte);
  }
  half_ = false;
  if ((byte & 0x60) == 0x40) return store(byte ^ 0x40U);
  if (byte == 'l') return store(0x7F);
  if (byte == 'm') return store(0xFF);
  return break_off(byte);
}

ZmodemParser::Event ZmodemParser::store(unsigned byte) {
  body_[filled_++] = static_cast<char>(byte);
  if (filled_ < length_) return Event::none;
  place_ = Place::outside;
  const std::string_view body(body_.data(), length_);
  if (!check_holds(body)) return Event::damaged;
  header_.frame = static_cast<ZmodemFrame>(body[0]);
  header_.value = little_endian(body.substr(1, 4));
  return Event::header;
}

}  // namespace orvex
