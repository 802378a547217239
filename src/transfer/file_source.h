#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace orvex {

/// The file a transfer reads, in pieces.
class FileSource {
 public:
  virtual ~FileSource() = default;
  /// Without its folder, one byte a character.
  virtual std::string name() const = 0;
  /// Bytes, as it was when the transfer began.
  virtual std::uint64_t size() const = 0;
  /// Last change in seconds since 1970 UTC, 0 if unknown.
  virtual std::int64_t modified() const = 0;
  /// Unix mode bits with the file type, such as 0100644; 0 if unknown.
  virtual unsigned mode() const = 0;
  /// Fills `into` whole with the bytes at `offset`; false if the file can't give them.
  virtual bool read(std::uint64_t offset, std::span<char> into) = 0;
};

}  // namespace orvex
