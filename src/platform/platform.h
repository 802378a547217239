#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// What differs between the systems Orvex runs on. One source file for each of them.
namespace orvex::platform {

/// The folder of the machine that holds the port configuration file and the links to ports.
std::filesystem::path state_folder();

/// Path of the device that port COM `number` stands for; empty if there is none. A link
/// `com<number>` in `folder` decides, if there is one, also if it leads nowhere: the path is then
/// that of the missing device. Otherwise it is the number-th serial port of the machine.
std::string device_of_port(int number, const std::filesystem::path& folder);

enum class DeviceKind {
  none,  ///< no character device, or one of another kind
  serial_port,
  pseudo_terminal,  ///< carries neither parity nor 7 data bits nor DTR and RTS
};
DeviceKind kind_of_device(const std::string& path);

/// False for the pseudo-terminal of a user who is neither the tool's own nor root: behind it sits
/// whoever made it. Asked of the open port, since a name may change its meaning.
bool is_trusted_port(std::intptr_t port_handle);

/// True where a lock of the device isn't a regular file of at most 1 KiB. Folders of locks are open
/// to all users, and the serial port waits for a pipe and reads a file of any size.
bool has_odd_lock(const std::string& device);

/// What the user lacks to open the device, as "permission denied (group dialout)", with the group
/// that may; empty if nothing.
std::string missing_right(const std::string& path);

/// Bytes written to an open port that the system has not sent yet; 0 where it can't tell.
std::size_t unsent_bytes(std::intptr_t port_handle);

/// A descriptor that becomes readable when the system asks the process to end, as at a
/// logout; -1 where it has no such way. Asked for once.
int end_request();

/// Path of the device behind the name that a user gave, without links; empty where there is none.
std::string resolved_device(const std::string& name);

enum class Stream { input = 0, output = 1, error = 2 };
/// True where a person sits at this standard stream.
bool is_terminal(Stream stream);

/// Has standard streams take UTF-8, and a write to one that nobody reads fail without a signal.
void prepare_streams();

/// A line from standard input, without its end. None where there is no more, or where `end_request`
/// became readable first; -1 is no descriptor.
std::optional<std::string> read_line(int end_request);

/// The words behind the program's name, in UTF-8.
std::vector<std::string> arguments(int count, char** words);

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
