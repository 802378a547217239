#include "simulator/pty_device.h"

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace orvex::simulator {
namespace fs = std::filesystem;
namespace {

constexpr std::array<std::pair<speed_t, int>, 8> rates{{{B1200, 1200},
                                                        {B2400, 2400},
                                                        {B4800, 4800},
                                                        {B9600, 9600},
                                                        {B19200, 19200},
                                                        {B38400, 38400},
                                                        {B57600, 57600},
                                                        {B115200, 115200}}};
/// Where the link of an unplugged device leads. A number of a closed pseudo-terminal may soon be
/// somebody else's.
constexpr const char* nowhere = "unplugged";

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

PtyDevice::PtyDevice(fs::path link) : link_(std::move(link)) {
  plug();
}

PtyDevice::~PtyDevice() {
  std::error_code ignored;
  const auto target = fs::read_symlink(link_, ignored);
  if (!ignored && (target == path_ || target == nowhere)) fs::remove(link_, ignored);
  close_descriptors();
}

void PtyDevice::plug() {
  if (plugged()) return;
  master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (master_ < 0) fail("pseudo-terminal");
  std::array<char, 128> name{};
  if (::grantpt(master_) != 0 || ::unlockpt(master_) != 0 ||
      ::ptsname_r(master_, name.data(), name.size()) != 0) {
    fail("pseudo-terminal");
  }
  path_ = name.data();
  slave_ = ::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (slave_ < 0) fail(name.data());
  termios settings{};
  if (::tcgetattr(slave_, &settings) != 0) fail(name.data());
  ::cfmakeraw(&settings);
  ::cfsetspeed(&settings, B9600);
  if (::tcsetattr(slave_, TCSANOW, &settings) != 0) fail(name.data());
  link_to(path_);
}

void PtyDevice::unplug() {
  if (!plugged()) return;
  link_to(nowhere);
  close_descriptors();
}

int PtyDevice::rate() const {
  termios settings{};
  if (!plugged() || ::tcgetattr(master_, &settings) != 0) return 0;
  for (const auto& [speed, rate] : rates) {
    if (speed == ::cfgetospeed(&settings)) return rate;
  }
  return 0;
}

std::string PtyDevice::read() {
  std::string bytes;
  std::array<char, 4096> piece{};
  while (plugged()) {
    const auto got = ::read(master_, piece.data(), piece.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    bytes.append(piece.data(), static_cast<std::size_t>(got));
    if (bytes.size() >= 16 * piece.size()) break;
  }
  return bytes;
}

void PtyDevice::write(std::string_view bytes) {
  while (plugged() && !bytes.empty()) {
    const auto put = ::write(master_, bytes.data(), bytes.size());
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(put));
  }
}

void PtyDevice::link_to(const fs::path& target) {
  const fs::path fresh = link_.string() + ".new-" + std::to_string(::getpid());
  std::error_code ignored;
  fs::remove(fresh, ignored);
  fs::create_symlink(target, fresh);
  fs::rename(fresh, link_);
}

void PtyDevice::close_descriptors() {
  for (int* descriptor : {&slave_, &master_}) {
    if (*descriptor >= 0) ::close(*descriptor);
    *descriptor = -1;
  }
}

}  // namespace orvex::simulator
