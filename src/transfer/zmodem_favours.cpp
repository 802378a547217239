#include "transfer/zmodem_favours.h"

#include <algorithm>
#include <string>
#include <utility>

#include "transfer/zmodem_crc.h"

namespace orvex {
namespace {

constexpr int most_favours = 10;
constexpr std::uint64_t step = 65536;

}  // namespace

bool ZmodemFavours::ask_crc(std::uint64_t bytes, std::uint64_t size) {
  if (computing()) return true;
  wanted_ = bytes == 0 ? size : std::min(bytes, size);
  covered_ = 0;
  crc_ = 0;
  return ++asked_ <= most_favours;
}

bool ZmodemFavours::ask_echo(std::uint32_t value) {
  echo_ = value;
  return ++asked_ <= most_favours;
}

bool ZmodemFavours::compute(FileSource& file) {
  std::string block(std::min(step, wanted_ - *covered_), '\0');
  if (!file.read(*covered_, block)) return false;
  crc_ = zmodem_crc32(block, crc_);
  *covered_ += block.size();
  if (*covered_ < wanted_) return true;
  covered_.reset();
  crc_ready_ = true;
  return true;
}

bool ZmodemFavours::produce(ZmodemWire& wire) {
  if (echo_) {
    wire.add_hex_header(ZmodemFrame::zack, *std::exchange(echo_, std::nullopt));
  } else if (std::exchange(crc_ready_, false)) {
    wire.add_hex_header(ZmodemFrame::zcrc, crc_);
  } else {
    return false;
  }
  return true;
}

}  // namespace orvex
