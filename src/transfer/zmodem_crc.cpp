#include "transfer/zmodem_crc.h"

#include <zlib.h>

#include <array>

namespace orvex {
namespace {

constexpr std::array<std::uint16_t, 256> make_crc16_table() {
  std::array<std::uint16_t, 256> table{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    unsigned crc = byte << 8;
    for (int bit = 0; bit < 8; ++bit) crc = (crc << 1) ^ ((crc & 0x8000) != 0 ? 0x1021U : 0U);
    table[byte] = static_cast<std::uint16_t>(crc);
  }
  return table;
}

constexpr auto crc16_table = make_crc16_table();

}  // namespace

std::uint16_t zmodem_crc16(std::string_view bytes, std::uint16_t before) {
  unsigned crc = before;
  for (const char c : bytes) {
    crc = ((crc << 8) & 0xFFFF) ^ crc16_table[(crc >> 8) ^ static_cast<unsigned char>(c)];
  }
  return static_cast<std::uint16_t>(crc);
}

std::uint32_t zmodem_crc32(std::string_view bytes, std::uint32_t before) {
  if (bytes.empty()) return before;  // zlib would begin anew at a null pointer
  return static_cast<std::uint32_t>(
      ::crc32_z(before, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

}  // namespace orvex
