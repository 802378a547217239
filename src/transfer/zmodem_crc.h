#pragma once

#include <cstdint>
#include <string_view>

namespace orvex {

/// CRC-16 of ZMODEM: polynomial 0x1021, most significant bit first, start 0, result unchanged.
/// `before` is the CRC of the bytes in front of these.
std::uint16_t zmodem_crc16(std::string_view bytes, std::uint16_t before = 0);

/// CRC-32 of ZMODEM, the one of Ethernet: polynomial 0xEDB88320 (reflected), start and result
/// inverted. `before` is the CRC of the bytes in front of these.
std::uint32_t zmodem_crc32(std::string_view bytes, std::uint32_t before = 0);

}  // namespace orvex
