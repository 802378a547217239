#include "transfer/zmodem_wire.h"

#include <utility>

namespace orvex {

void ZmodemWire::suit(const ZmodemReceiver& receiver) {
  escape_ = ZmodemEscape(receiver.escape_controls);
  check_ = receiver.crc32 ? ZmodemCheck::crc32 : ZmodemCheck::crc16;
}

void ZmodemWire::add_hex_header(ZmodemFrame frame, std::uint32_t value) {
  pad();
  add_plain(zmodem_hex_header({frame, value}));
}

void ZmodemWire::add_header(ZmodemFrame frame, std::uint64_t value) {
  pad();
  append_binary_header({frame, static_cast<std::uint32_t>(value)}, check_, escape_, pending_);
}

void ZmodemWire::add_subpacket(std::string_view data, ZmodemEnd end) {
  append_subpacket(data, end, check_, escape_, pending_);
}

std::string ZmodemWire::take(std::size_t room) {
  std::string out = std::exchange(pending_, {});
  if (out.size() > room) {
    pending_.reserve(out.size());
    pending_.assign(out, room);
    out.resize(room);
  }
  return out;
}

void ZmodemWire::discard() {
  pending_.clear();
  discard_ = true;
  cut_ = true;
}

void ZmodemWire::pad() {
  if (std::exchange(cut_, false)) add_plain("**********");
}

bool ZmodemWire::take_discard() {
  return std::exchange(discard_, false);
}

}  // namespace orvex
