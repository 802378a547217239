#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <tuple>

#include "platform/linux_ports.h"
#include "platform/platform.h"

namespace orvex::platform {
namespace fs = std::filesystem;
namespace {

std::error_code last_error() {
  return {errno, std::generic_category()};
}

/// Rank of the kind of port, and the number behind its name.
struct PortOrder {
  int rank;
  std::string kind;
  int number;
};

bool has_uart(const fs::path& terminal) {
  std::ifstream file(terminal / "type");
  int type = 0;
  return file >> type && type != 0;
}

std::optional<PortOrder> order_of(const fs::path& terminal) {
  const std::string name = terminal.filename().string();
  const auto digits = name.find_first_of("0123456789");
  if (digits == std::string::npos) return std::nullopt;
  PortOrder order{0, name.substr(0, digits), 0};
  const auto [end, error] =
      std::from_chars(name.data() + digits, name.data() + name.size(), order.number);
  if (error != std::errc{} || end != name.data() + name.size()) return std::nullopt;
  if (order.kind == "ttyUSB") {
    order.rank = 2;
  } else if (order.kind == "ttyACM") {
    order.rank = 3;
  } else if (has_uart(terminal)) {
    order.rank = order.kind == "ttyS" ? 0 : 1;
  } else {
    return std::nullopt;
  }
  return order;
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

bool is_pseudo_terminal(const struct stat& status) {
  // The kernel's list of devices gives the majors 136 to 143 to pseudo-terminals.
  const auto device = major(status.st_rdev);
  return S_ISCHR(status.st_mode) && device >= 136 && device <= 143;
}

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

/// What the kernel asks before it follows a link in a folder such as /tmp: that it is the user's
/// own or of the folder's owner.
bool may_follow(const fs::path& link) {
  constexpr mode_t for_all = S_ISVTX | S_IWOTH;
  const fs::path folder = link.has_parent_path() ? link.parent_path() : fs::path(".");
  struct stat around {};
  struct stat status {};
  if (::stat(folder.c_str(), &around) != 0 || ::lstat(link.c_str(), &status) != 0) return false;
  return (around.st_mode & for_all) != for_all || status.st_uid == ::geteuid() ||
         status.st_uid == around.st_uid;
}

/// The path behind all links, also where the last of them leads to a file that doesn't exist yet.
fs::path behind_links(fs::path path, std::error_code& error) {
  constexpr int most_links = 40;
  for (int links = 0; links < most_links; ++links) {
    std::error_code no_link;
    const fs::path target = fs::read_symlink(path, no_link);
    if (no_link) return path;
    if (!may_follow(path)) {
      error = std::make_error_code(std::errc::permission_denied);
      return path;
    }
    path = target.is_absolute() ? target : path.parent_path() / target;
  }
  error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
  return path;
}

int end_request_writer = -1;  // a signal handler has nothing else to reach it by

void tell_end_request(int /*signal*/) {
  const int kept = errno;
  if (::write(end_request_writer, "", 1) < 0) {
    // A pipe that is full has been told.
  }
  errno = kept;
}

}  // namespace

fs::path state_folder() {
  return ORVEX_STATE_DIR;
}

std::vector<std::string> serial_ports(const fs::path& class_tty) {
  std::vector<std::pair<PortOrder, std::string>> found;
  std::error_code error;
  for (fs::directory_iterator terminal(class_tty, error), end; !error && terminal != end;
       terminal.increment(error)) {
    if (auto order = order_of(terminal->path())) {
      found.emplace_back(*order, terminal->path().filename().string());
    }
  }
  std::ranges::sort(found, {}, [](const auto& entry) {
    return std::tie(entry.first.rank, entry.first.kind, entry.first.number);
  });
  std::vector<std::string> names;
  names.reserve(found.size());
  for (auto& entry : found) names.push_back(std::move(entry.second));
  return names;
}

std::string device_of_port(int number, const fs::path& folder) {
  if (number < 1) return {};
  const fs::path link = folder / ("com" + std::to_string(number));
  std::error_code error;
  if (fs::is_symlink(fs::symlink_status(link, error))) {
    fs::path device = fs::canonical(link, error);
    if (error == std::errc::no_such_file_or_directory) {
      error.clear();
      device = behind_links(link, error).lexically_normal();
    }
    return error ? std::string{} : device.string();
  }
  const auto ports = serial_ports("/sys/class/tty");
  const auto index = static_cast<std::size_t>(number - 1);
  return index < ports.size() ? "/dev/" + ports[index] : std::string{};
}

DeviceKind kind_of_device(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) return DeviceKind::none;
  if (is_pseudo_terminal(status)) return DeviceKind::pseudo_terminal;
  // To open a device of another kind may do something already, as with a watchdog.
  std::error_code unknown;
  const auto subsystem =
      fs::read_symlink("/sys/dev/char/" + std::to_string(major(status.st_rdev)) + ":" +
                           std::to_string(minor(status.st_rdev)) + "/subsystem",
                       unknown);
  return unknown || subsystem.filename() == "tty" ? DeviceKind::serial_port : DeviceKind::none;
}

bool is_trusted_port(std::intptr_t port_handle) {
  struct stat status {};
  if (::fstat(static_cast<int>(port_handle), &status) != 0) return false;
  return !is_pseudo_terminal(status) || status.st_uid == 0 || status.st_uid == ::geteuid();
}

bool has_odd_lock(const std::string& device) {
  constexpr std::string_view devices = "/dev/";
  constexpr off_t most_bytes = 1024;
  // The folders that QSerialPort looks through for a lock.
  constexpr std::array folders{"/var/lock", "/etc/locks",       "/var/spool/locks",
                               "/tmp",      "/var/spool/uucp",  "/var/tmp",
                               "/run/lock", "/var/lock/lockdev"};
  std::string name = device.starts_with(devices) ? device.substr(devices.size()) : device;
  std::ranges::replace(name, '/', '_');
  return std::ranges::any_of(folders, [&](const char* folder) {
    struct stat status {};
    const fs::path lock = fs::path(folder) / ("LCK.." + name);
    if (::lstat(lock.c_str(), &status) != 0) return false;
    return !S_ISREG(status.st_mode) || status.st_size > most_bytes;
  });
}

std::string missing_right(const std::string& path) {
  if (::access(path.c_str(), R_OK | W_OK) == 0 || errno != EACCES) return {};
  constexpr mode_t of_group = S_IRGRP | S_IWGRP;
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return "permission denied";
  const group* owner =
      (status.st_mode & of_group) == of_group ? ::getgrgid(status.st_gid) : nullptr;
  if (owner == nullptr) return "permission denied";
  return std::string("permission denied (group ") + owner->gr_name + ")";
}

std::size_t unsent_bytes(std::intptr_t port_handle) {
  int count = 0;
  if (::ioctl(static_cast<int>(port_handle), TIOCOUTQ, &count) != 0 || count < 0) return 0;
  return static_cast<std::size_t>(count);
}

int end_request() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return -1;
  end_request_writer = ends[1];
  struct sigaction action {};
  action.sa_handler = tell_end_request;
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) ::sigaction(signal, &action, nullptr);
  return ends[0];
}

std::string resolved_device(const std::string& name) {
  std::error_code error;
  const fs::path device = fs::canonical(name, error);
  return error ? std::string{} : device.string();
}

bool is_terminal(Stream stream) {
  return ::isatty(static_cast<int>(stream)) == 1;
}

void prepare_streams() {
  ::signal(SIGPIPE, SIG_IGN);
}

std::optional<std::string> read_line(int end_request) {
  constexpr std::size_t longest_line = 4096;
  std::string line;
  while (line.size() < longest_line) {
    std::array<pollfd, 2> sources{{{STDIN_FILENO, POLLIN, 0}, {end_request, POLLIN, 0}}};
    if (::poll(sources.data(), sources.size(), -1) < 0 && errno != EINTR) return std::nullopt;
    if (sources[1].revents != 0) return std::nullopt;
    if (sources[0].revents == 0) continue;
    char byte = 0;
    const auto got = ::read(STDIN_FILENO, &byte, 1);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return std::nullopt;
    if (byte == '\n') break;
    line += byte;
  }
  return line;
}

std::vector<std::string> arguments(int count, char** words) {
  return {words + std::min(count, 1), words + count};
}

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
