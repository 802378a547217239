#include "platform/ports.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <optional>
#include <tuple>

#include "base/network_address.h"
#include "platform/linux_links.h"
#include "platform/linux_ports.h"

namespace orvex::platform {
namespace fs = std::filesystem;
namespace {

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

/// The name of a port in the network that a link has for its text, empty if none, and the owner of
/// that very link.
std::pair<std::string, uid_t> network_link(const fs::path& link) {
  constexpr std::size_t longest_name = 300;
  const int descriptor = ::open(link.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor < 0) return {};
  struct stat status {};
  std::array<char, longest_name> text{};
  const bool is_link = ::fstat(descriptor, &status) == 0 && S_ISLNK(status.st_mode);
  const ssize_t size = is_link ? ::readlinkat(descriptor, "", text.data(), text.size()) : 0;
  ::close(descriptor);
  const std::string_view name(text.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  if (!is_network_name(name)) return {};
  return {std::string(name), status.st_uid};
}

bool is_pseudo_terminal(const struct stat& status) {
  // The kernel's list of devices gives the majors 136 to 143 to pseudo-terminals.
  const auto device = major(status.st_rdev);
  return S_ISCHR(status.st_mode) && device >= 136 && device <= 143;
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

std::string network_name_of(const fs::path& link) {
  auto [name, owner] = network_link(link);
  if (owner != 0 && owner != ::geteuid()) name.clear();
  return name;
}

bool is_foreign_network_link(const fs::path& link) {
  return !network_link(link).first.empty() && network_name_of(link).empty();
}

std::string device_of_port(int number, const fs::path& folder) {
  if (number < 1) return {};
  const fs::path link = folder / ("com" + std::to_string(number));
  if (std::string name = network_name_of(link); !name.empty()) return name;
  if (is_foreign_network_link(link)) return link;
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

std::string resolved_device(const std::string& name) {
  std::error_code error;
  const fs::path device = fs::canonical(name, error);
  return error ? name : device.string();
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

std::vector<fs::path> locks_of(const std::string& device) {
  constexpr std::string_view devices = "/dev/";
  std::string name = device.starts_with(devices) ? device.substr(devices.size()) : device;
  std::ranges::replace(name, '/', '_');
  std::vector<fs::path> locks;
  for (const fs::path folder : {"/var/lock", "/etc/locks", "/var/spool/locks", "/var/spool/uucp",
                                "/tmp", "/var/tmp", "/var/lock/lockdev", "/run/lock"}) {
    locks.push_back(folder / ("LCK.." + name));
  }
  return locks;
}

bool has_odd_lock(const std::string& device) {
  constexpr off_t most_bytes = 1024;
  return std::ranges::any_of(locks_of(device), [](const fs::path& lock) {
    struct stat status {};
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

}  // namespace orvex::platform
