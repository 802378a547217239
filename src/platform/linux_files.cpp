#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/files.h"
#include "platform/linux_links.h"

namespace orvex::platform {
namespace fs = std::filesystem;
namespace {

std::error_code last_error() {
  return {errno, std::generic_category()};
}

/// A file descriptor that is closed at the end of its scope.
class Descriptor {
 public:
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  ~Descriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return descriptor_; }

 private:
  int descriptor_;
};

std::error_code write_all(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return last_error();
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return {};
}

std::error_code no_regular_file(const struct stat& status) {
  if (S_ISREG(status.st_mode)) return {};
  return std::make_error_code(S_ISDIR(status.st_mode) ? std::errc::is_a_directory
                                                      : std::errc::invalid_seek);
}

std::error_code write_to_device(const fs::path& path, std::string_view bytes) {
  const Descriptor device(
      ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY));
  if (device.get() < 0) return last_error();
  struct stat status {};
  if (::fstat(device.get(), &status) != 0) return last_error();
  // A file that has come in its place meanwhile is replaced by the next try, never written into.
  if (S_ISREG(status.st_mode)) return std::make_error_code(std::errc::text_file_busy);
  return write_all(device.get(), bytes);
}

/// What a fresh file gets: in a folder of a group, where links give way, the whole group replaces
/// it.
mode_t rights_of_new(Links links) {
  if (links == Links::replace) return 0664;
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

void take_over_rights(int descriptor, const struct stat& old) {
  if (::fchown(descriptor, old.st_uid, old.st_gid) != 0) {
    // Only root may give a file away; the user's own is as good.
  }
  // Rights to read, write and run alone: no file that this tool makes runs with another's rights.
  constexpr mode_t rights = 0777;
  ::fchmod(descriptor, old.st_mode & rights);
}

std::error_code write_beside_and_rename(const fs::path& path, std::string_view bytes, Links links,
                                        const struct stat* old) {
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  std::string beside = (folder / ".orvex-XXXXXX").string();
  const Descriptor file(::mkostemp(beside.data(), O_CLOEXEC));
  if (file.get() < 0) return last_error();
  if (old != nullptr) {
    take_over_rights(file.get(), *old);
  } else {
    ::fchmod(file.get(), rights_of_new(links));
  }
  std::error_code error = write_all(file.get(), bytes);
  if (!error && ::fsync(file.get()) != 0) error = last_error();
  if (!error && ::rename(beside.c_str(), path.c_str()) != 0) error = last_error();
  if (error) {
    ::unlink(beside.c_str());
    return error;
  }
  const Descriptor parent(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (parent.get() >= 0) ::fsync(parent.get());
  return {};
}

}  // namespace

std::error_code replace_file(const fs::path& name, std::string_view bytes, Links links) {
  std::error_code error;
  const fs::path path = links == Links::follow ? behind_links(name, error) : name;
  if (error) return error;
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) {
    if (errno != ENOENT) return last_error();
    error = write_beside_and_rename(path, bytes, links, nullptr);
    // For a new file a missing folder is what is not found.
    return error == std::errc::no_such_file_or_directory
               ? std::make_error_code(std::errc::not_a_directory)
               : error;
  }
  if (S_ISDIR(status.st_mode)) return std::make_error_code(std::errc::is_a_directory);
  if (!S_ISREG(status.st_mode)) {
    return links == Links::follow ? write_to_device(path, bytes)
                                  : write_beside_and_rename(path, bytes, links, nullptr);
  }
  if (::access(path.c_str(), W_OK) != 0) return last_error();
  return write_beside_and_rename(path, bytes, links, &status);
}

InputFile::~InputFile() {
  close();
}

std::error_code InputFile::open(const fs::path& path, Links links) {
  close();
  struct stat status {};
  const bool follow = links == Links::follow;
  // Looked at before as well: to open a device may do something already.
  if (::fstatat(AT_FDCWD, path.c_str(), &status, follow ? 0 : AT_SYMLINK_NOFOLLOW) == 0) {
    if (const auto error = no_regular_file(status)) return error;
  }
  const int descriptor = ::open(
      path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | (follow ? 0 : O_NOFOLLOW));
  if (descriptor < 0) {
    const auto error = last_error();
    std::error_code ignored;
    const bool folder_is_missing =
        error == std::errc::no_such_file_or_directory &&
        !fs::is_directory(fs::absolute(path, ignored).parent_path(), ignored);
    return folder_is_missing ? std::make_error_code(std::errc::not_a_directory) : error;
  }
  handle_ = descriptor;
  if (::fstat(descriptor, &status) != 0) return last_error();
  if (const auto error = no_regular_file(status)) return error;
  size_ = static_cast<std::uint64_t>(status.st_size);
  modified_ = status.st_mtime;
  mode_ = status.st_mode;
  return {};
}

void InputFile::close() {
  if (handle_ >= 0) ::close(static_cast<int>(handle_));
  handle_ = -1;
}

std::size_t InputFile::read(std::uint64_t offset, std::span<char> into, std::error_code& error) {
  std::size_t done = 0;
  while (done < into.size()) {
    const auto got = ::pread(static_cast<int>(handle_), into.data() + done, into.size() - done,
                             static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) error = last_error();
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

}  // namespace orvex::platform
