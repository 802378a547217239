#include "transfer/zmodem_codec.h"

#include "transfer/zmodem_crc.h"

namespace orvex {
namespace {

std::string raw_header(const ZmodemHeader& header) {
  std::string raw(1, static_cast<char>(header.frame));
  for (unsigned shift = 0; shift < 32; shift += 8) {
    raw += static_cast<char>((header.value >> shift) & 0xFF);
  }
  return raw;
}

// CRC-16 goes with its high byte first, CRC-32 with its low byte first. It covers both texts.
std::string check_bytes(std::string_view covered, ZmodemCheck check, std::string_view end = {}) {
  std::string bytes;
  if (check == ZmodemCheck::crc16) {
    const unsigned crc = zmodem_crc16(end, zmodem_crc16(covered));
    bytes += static_cast<char>(crc >> 8);
    bytes += static_cast<char>(crc & 0xFF);
  } else {
    const std::uint32_t crc = zmodem_crc32(end, zmodem_crc32(covered));
    for (unsigned shift = 0; shift < 32; shift += 8)
      bytes += static_cast<char>(crc >> shift & 0xFF);
  }
  return bytes;
}

}  // namespace

ZmodemReceiver ZmodemReceiver::from(const ZmodemHeader& zrinit) {
  const std::uint32_t f0 = zrinit.value >> 24;
  ZmodemReceiver receiver;
  receiver.full_duplex = (f0 & 0x01) != 0;
  receiver.overlapped = (f0 & 0x02) != 0;
  receiver.crc32 = (f0 & 0x20) != 0;
  receiver.escape_controls = (f0 & 0x40) != 0;
  receiver.escape_eighth_bit = (f0 & 0x80) != 0;
  receiver.buffer = zrinit.value & 0xFFFF;
  return receiver;
}

std::string zmodem_hex_header(const ZmodemHeader& header) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string raw = raw_header(header);
  raw += check_bytes(raw, ZmodemCheck::crc16);
  std::string wire = "**\030B";
  for (const char c : raw) {
    const auto byte = static_cast<unsigned char>(c);
    wire += digits[byte >> 4];
    wire += digits[byte & 0x0F];
  }
  wire += "\r\n";
  if (header.frame != ZmodemFrame::zack && header.frame != ZmodemFrame::zfin) wire += '\x11';
  return wire;
}

void append_binary_header(const ZmodemHeader& header, ZmodemCheck check, ZmodemEscape& escape,
                          std::string& wire) {
  escape.append_plain(check == ZmodemCheck::crc16 ? "*\030A" : "*\030C", wire);
  const std::string raw = raw_header(header);
  escape.append(raw, wire);
  escape.append(check_bytes(raw, check), wire);
}

void append_subpacket(std::string_view data, ZmodemEnd end, ZmodemCheck check, ZmodemEscape& escape,
                      std::string& wire) {
  const std::string mark{'\x18', static_cast<char>(end)};
  escape.append(data, wire);
  escape.append_plain(mark, wire);
  escape.append(check_bytes(data, check, mark.substr(1)), wire);
}

}  // namespace orvex
