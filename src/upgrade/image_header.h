#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace orvex {

/// The text fields at the head of a firmware image, as they stand in the file: fixed width, padding
/// and unprintable bytes included. docs/wire-format.md has the layout.
struct ImageHeader {
  std::string CodeSize;     ///< 8 bytes
  std::string CodeCrc;      ///< 4 bytes
  std::string CodeVersion;  ///< 7 bytes
  std::string CodeDate;     ///< 11 bytes
};

/// Reads the head of the image at `path`; none if the file has no more than the head's 108
/// bytes. Throws RunTimeError if it can't be read.
std::optional<ImageHeader> Read_Image_Header(const std::filesystem::path& path);

}  // namespace orvex
