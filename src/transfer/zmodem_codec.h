#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "transfer/zmodem_escape.h"

namespace orvex {

/// The types of a ZMODEM header, with their numbers on the wire.
enum class ZmodemFrame : std::uint8_t {
  zrqinit = 0,
  zrinit = 1,
  zsinit = 2,
  zack = 3,
  zfile = 4,
  zskip = 5,
  znak = 6,
  zabort = 7,
  zfin = 8,
  zrpos = 9,
  zdata = 10,
  zeof = 11,
  zferr = 12,
  zcrc = 13,
  zchallenge = 14,
  zcompl = 15,
  zcan = 16,
};

/// A header. Its four bytes are one number, lowest byte first on the wire: a position in the file,
/// or four flag bytes of which F0 is the highest.
struct ZmodemHeader {
  ZmodemFrame frame = ZmodemFrame::zrqinit;
  std::uint32_t value = 0;
  bool operator==(const ZmodemHeader&) const = default;
};

/// The check behind a binary header and behind its subpackets.
enum class ZmodemCheck { crc16, crc32 };

/// How a data subpacket ends: with the frame (ZCRCE), with more to come (ZCRCG), with more to come
/// and an answer asked for (ZCRCQ), or with the frame and an answer waited for (ZCRCW).
enum class ZmodemEnd : char { frame = 'h', more = 'i', ask = 'j', wait = 'k' };

/// What a receiver's ZRINIT announces.
struct ZmodemReceiver {
  bool full_duplex = false;        ///< CANFDX: it answers while it receives.
  bool overlapped = false;         ///< CANOVIO: it receives while it writes its memory.
  bool crc32 = false;              ///< CANFC32: it knows binary headers with CRC-32.
  bool escape_controls = false;    ///< ESCCTL: all control characters are to be escaped.
  bool escape_eighth_bit = false;  ///< ESC8: its line carries seven bits.
  std::size_t buffer = 0;          ///< Bytes it can hold before it must write; 0: no limit.

  static ZmodemReceiver from(const ZmodemHeader& zrinit);
  /// It can't answer while it takes data, so that data comes in segments, each to be answered.
  bool segmented() const { return !full_duplex || !overlapped || buffer > 0; }
};

/// A hex header with its line end; XON behind it, except behind ZACK and ZFIN. 20 or 21 bytes.
std::string zmodem_hex_header(const ZmodemHeader& header);

/// Adds a binary header to `wire`: 10 to 21 bytes.
void append_binary_header(const ZmodemHeader& header, ZmodemCheck check, ZmodemEscape& escape,
                          std::string& wire);

/// Adds a data subpacket to `wire`: `data` (at most 1024 bytes, may be empty), its end and check.
void append_subpacket(std::string_view data, ZmodemEnd end, ZmodemCheck check, ZmodemEscape& escape,
                      std::string& wire);

}  // namespace orvex
