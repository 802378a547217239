#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

/// What differs between the systems Orvex runs on. One source file for each of them.
namespace orvex::platform {

/// The folder of the machine that holds the port configuration file and the links to ports.
std::filesystem::path state_folder();

/// Path of the device that port COM `number` stands for; empty where there is none. A link
/// `com<number>` in `folder` decides, if there is one, also where it leads nowhere. Otherwise it is
/// the number-th serial port of the machine.
std::string device_of_port(int number, const std::filesystem::path& folder);

enum class DeviceKind {
  none,  ///< no character device
  serial_port,
  pseudo_terminal,  ///< carries neither parity nor 7 data bits nor DTR and RTS
};
DeviceKind kind_of_device(const std::string& path);

/// Bytes written to an open port that the system has not sent yet; 0 where it can't tell.
std::size_t unsent_bytes(std::intptr_t port_handle);

/// A descriptor that becomes readable when the system asks the process to end, as at a
/// logout; -1 where it has no such way. Asked for once.
int end_request();

/// Hands a web address to the desktop's default handler as one argument and returns at once.
void open_web_address(const std::string& address);

enum class Links {
  follow,   ///< a link stays a link, and its target is replaced
  replace,  ///< a link gives way to the file: for folders in which others may set links
};

/// Replaces the file at `path` by one that holds `bytes`, whole or not at all: on an error, a full
/// disk or a kill the old file stands as it was. A kill may leave the unfinished one beside it, as
/// .orvex- and six characters.
std::error_code replace_file(const std::filesystem::path& path, std::string_view bytes,
                             Links links = Links::follow);

/// A regular file open for reading. Folders, devices and pipes are refused and never waited for.
class InputFile {
 public:
  InputFile() = default;
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  std::error_code open(const std::filesystem::path& path);
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
