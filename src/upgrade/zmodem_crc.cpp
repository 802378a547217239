#include "upgrade/zmodem_crc.h"

#include <array>
#include <cstddef>

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

using Crc32Tables = std::array<std::array<std::uint32_t, 256>, 8>;

// Table k holds the effect of a byte that k further bytes follow: eight bytes go in one step.
constexpr Crc32Tables make_crc32_tables() {
  Crc32Tables tables{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t crc = byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320U : 0U);
    tables[0][byte] = crc;
  }
  for (std::size_t k = 1; k < tables.size(); ++k) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint32_t shorter = tables[k - 1][byte];
      tables[k][byte] = (shorter >> 8) ^ tables[0][shorter & 0xFF];
    }
  }
  return tables;
}

constexpr auto crc16_table = make_crc16_table();
constexpr auto crc32_tables = make_crc32_tables();

std::uint32_t little_endian_at(const char* at) {
  std::uint32_t value = 0;
  for (unsigned i = 0; i < 4; ++i) {
    value |= static_cast<std::uint32_t>(static_cast<unsigned char>(at[i])) << (8 * i);
  }
  return value;
}

}  // namespace

std::uint16_t zmodem_crc16(std::string_view bytes, std::uint16_t before) {
  unsigned crc = before;
  for (const char c : bytes) {
    crc = ((crc << 8) & 0xFFFF) ^ crc16_table[(crc >> 8) ^ static_cast<unsigned char>(c)];
  }
  return static_cast<std::uint16_t>(crc);
}

std::uint32_t zmodem_crc32(std::string_view bytes, std::uint32_t before) {
  const Crc32Tables& t = crc32_tables;
  std::uint32_t crc = ~before;
  for (; bytes.size() >= 8; bytes.remove_prefix(8)) {
    const std::uint32_t low = crc ^ little_endian_at(bytes.data());
    const std::uint32_t high = little_endian_at(bytes.data() + 4);
    crc = t[7][low & 0xFF] ^ t[6][(low >> 8) & 0xFF] ^ t[5][(low >> 16) & 0xFF] ^ t[4][low >> 24] ^
          t[3][high & 0xFF] ^ t[2][(high >> 8) & 0xFF] ^ t[1][(high >> 16) & 0xFF] ^
          t[0][high >> 24];
  }
  for (const char c : bytes) crc = (crc >> 8) ^ t[0][(crc ^ static_cast<unsigned char>(c)) & 0xFF];
  return ~crc;
}

}  // namespace orvex
