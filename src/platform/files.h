#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>
#include <system_error>

namespace orvex::platform {

enum class Links {
  follow,   ///< a link stays a link, and its target is read or replaced
  replace,  ///< a link isn't read and gives way to the file: for folders in which others make links
};

/// Replaces the file at `path` by one that holds `bytes`, whole or not at all: on an error, a full
/// disk or a kill the old file stands as it was. A kill may leave the unfinished one beside it, as
/// .orvex- and six characters. With Links::follow a device or a pipe is written to; with
/// Links::replace it gives way as well.
std::error_code replace_file(const std::filesystem::path& path, std::string_view bytes,
                             Links links = Links::follow);

/// A regular file open for reading. Folders, devices and pipes are refused and never waited for.
class InputFile {
 public:
  InputFile() = default;
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  std::error_code open(const std::filesystem::path& path, Links links = Links::follow);
  void close();
  std::uint64_t size() const { return size_; }         ///< bytes, when it was opened
  std::int64_t modified() const { return modified_; }  ///< seconds since 1970 UTC
  unsigned mode() const { return mode_; }              ///< Unix mode bits with the file type
  /// Gives the number of bytes read from `offset` on; fewer than asked only at the file's end.
  std::size_t read(std::uint64_t offset, std::span<char> into, std::error_code& error);

 private:
  std::intptr_t handle_ = -1;
  std::uint64_t size_ = 0;
  std::int64_t modified_ = 0;
  unsigned mode_ = 0;
};

}  // namespace orvex::platform
