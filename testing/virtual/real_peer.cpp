#include "testing/virtual/real_peer.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <thread>

namespace orvex::testing {
namespace {

constexpr std::size_t driver_room = 2048;

int poll_timeout(const FileEngine& engine, Time until) {
  const Time wake = std::min(engine.wake().value_or(until), until);
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(wake - steady_now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(left, 0, 1000));
}

}  // namespace

Pty::Pty() {
  termios raw{};
  cfmakeraw(&raw);
  if (openpty(&master_, &slave_, nullptr, &raw, nullptr) != 0) {
    throw std::system_error(errno, std::generic_category(), "openpty");
  }
  for (const int fd : {master_, slave_}) fcntl(fd, F_SETFD, FD_CLOEXEC);
}

Pty::~Pty() {
  close(master_);
  close_slave();
}

void Pty::close_slave() {
  if (slave_ >= 0) close(slave_);
  slave_ = -1;
}

pid_t start_on(int fd, const std::string& folder, const std::vector<std::string>& command) {
  const pid_t process = fork();
  if (process != 0) return process;
  std::vector<char*> arguments;
  for (const auto& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  if (dup2(fd, 0) < 0 || dup2(fd, 1) < 0 || chdir(folder.c_str()) != 0) _exit(126);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

int wait_for(pid_t process, Time limit) {
  const Time end = steady_now() + limit;
  int status = 0;
  while (waitpid(process, &status, WNOHANG) == 0) {
    if (steady_now() > end) {
      kill(process, SIGKILL);
      waitpid(process, &status, 0);
      return -1;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Time steady_now() {
  return std::chrono::steady_clock::now().time_since_epoch();
}

void drive(FileEngine& engine, int fd, Time until) {
  fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
  std::string unsent;
  std::array<char, 4096> buffer;
  while ((!engine.finished() || !unsent.empty()) && steady_now() < until) {
    if (engine.wake() && *engine.wake() <= steady_now()) engine.tick(steady_now());
    if (engine.take_discard()) {
      unsent.clear();
      tcflush(fd, TCOFLUSH);
    }
    for (;;) {
      unsent += engine.transmit(driver_room - unsent.size(), steady_now());
      if (unsent.empty()) break;
      const ssize_t written = write(fd, unsent.data(), unsent.size());
      if (written < 0 && errno != EAGAIN) return;
      if (written <= 0) break;
      unsent.erase(0, static_cast<std::size_t>(written));
    }
    if (engine.finished() && unsent.empty()) return;
    pollfd port{fd, static_cast<short>(unsent.empty() ? POLLIN : POLLIN | POLLOUT), 0};
    poll(&port, 1, poll_timeout(engine, until));
    const ssize_t got =
        (port.revents & (POLLIN | POLLHUP)) != 0 ? read(fd, buffer.data(), buffer.size()) : 0;
    if (got < 0 && errno != EAGAIN) return;
    if (got > 0) engine.receive({buffer.data(), static_cast<std::size_t>(got)}, steady_now());
  }
}

}  // namespace orvex::testing
