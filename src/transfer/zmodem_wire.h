#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "transfer/zmodem_codec.h"
#include "transfer/zmodem_escape.h"

namespace orvex {

/// What is to go out: headers and subpackets, encoded as the receiver wants them, until the line
/// takes them.
class ZmodemWire {
 public:
  /// Binary headers and subpackets follow what this receiver announced.
  void suit(const ZmodemReceiver& receiver);

  void add_hex_header(ZmodemFrame frame, std::uint32_t value);
  void add_header(ZmodemFrame frame, std::uint64_t value);
  void add_subpacket(std::string_view data, ZmodemEnd end);
  void add_plain(std::string_view bytes) { escape_.append_plain(bytes, pending_); }

  /// The next bytes for the line, at most `room`.
  std::string take(std::size_t room);
  std::size_t size() const { return pending_.size(); }
  bool empty() const { return pending_.empty(); }

  /// Drops what the line didn't take, and wants the same of what stands at the operating system.
  /// The cut may go through a header: ten pads come before the next one, which would otherwise be
  /// taken for the rest of it.
  void discard();
  /// Leaves what stands at the operating system there after all.
  void keep_sent() { discard_ = false; }
  /// Whether a discard is wanted; true once for each.
  bool take_discard();

 private:
  void pad();

  ZmodemEscape escape_;
  ZmodemCheck check_ = ZmodemCheck::crc16;
  std::string pending_;
  bool discard_ = false;
  bool cut_ = false;
};

}  // namespace orvex
