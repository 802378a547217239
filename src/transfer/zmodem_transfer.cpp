#include "transfer/zmodem_transfer.h"

#include <algorithm>

namespace orvex {
namespace {

// Eight CAN end the receiver's transfer; ten BS take them back from a terminal.
constexpr std::string_view cancel_sequence = "\x18\x18\x18\x18\x18\x18\x18\x18\b\b\b\b\b\b\b\b\b\b";

}  // namespace

bool ZmodemTransfer::meet(const ZmodemHeader& zrinit) {
  receiver = ZmodemReceiver::from(zrinit);
  if (receiver.escape_eighth_bit) {
    fail("the scanner asks for a seven-bit line");
    return false;
  }
  wire.suit(receiver);
  return true;
}

void ZmodemTransfer::gain(std::uint64_t place) {
  if (place <= confirmed) return;
  confirmed = place;
  gained = std::max(gained, place);
  retry.gained(place);
  end_by.reset();
}

void ZmodemTransfer::complete() {
  state = FileEngine::State::complete;
  favours = {};
  step = ZmodemStep::farewell;
  wire.keep_sent();
}

void ZmodemTransfer::part(std::string_view why) {
  state = FileEngine::State::failed;
  reason = why;
  favours = {};
  step = ZmodemStep::farewell;
  wire.discard();
}

void ZmodemTransfer::fail(std::string_view why) {
  end_quietly(why);
  wire.add_plain(cancel_sequence);
}

void ZmodemTransfer::end_quietly(std::string_view why) {
  state = FileEngine::State::failed;
  reason = why;
  step = ZmodemStep::over;
  wire.discard();
}

}  // namespace orvex
