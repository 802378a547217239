#pragma once

#include <cstdint>
#include <optional>

#include "transfer/file_source.h"
#include "transfer/zmodem_wire.h"

namespace orvex {

/// What a receiver may ask beside the file itself: the file's CRC (ZCRC) and an echo (ZCHALLENGE).
/// The CRC is taken in steps of 64 KiB, so that no call takes long.
class ZmodemFavours {
 public:
  /// Each returns false once ten were asked.
  /// `bytes` of the file from its begin; 0 is all of it.
  bool ask_crc(std::uint64_t bytes, std::uint64_t size);
  bool ask_echo(std::uint32_t value);

  bool computing() const { return covered_.has_value(); }
  /// Takes the next step; false if the file can't be read.
  bool compute(FileSource& file);
  /// Adds an answer that is ready; false if there is none.
  bool produce(ZmodemWire& wire);

 private:
  int asked_ = 0;
  std::optional<std::uint32_t> echo_;
  std::uint64_t wanted_ = 0;              // bytes
  std::optional<std::uint64_t> covered_;  // by the CRC so far
  std::uint32_t crc_ = 0;
  bool crc_ready_ = false;
};

}  // namespace orvex
