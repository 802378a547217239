#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/linux_process.h"
#include "platform/process.h"

namespace orvex::platform {
namespace {

// A signal handler has nothing else to reach them by.
int end_request_reader = -1;
int end_request_writer = -1;

void tell_end_request(int /*signal*/) {
  const int kept = errno;
  if (::write(end_request_writer, "", 1) < 0) {
    // A pipe that is full has been told.
  }
  errno = kept;
}

}  // namespace

int end_request() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return -1;
  end_request_reader = ends[0];
  end_request_writer = ends[1];
  struct sigaction action {};
  action.sa_handler = tell_end_request;
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    struct sigaction present {};
    // Who has started the process may want it to go on, as nohup does.
    if (::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN) continue;
    ::sigaction(signal, &action, nullptr);
  }
  return end_request_reader;
}

bool is_terminal(Stream stream) {
  return ::isatty(static_cast<int>(stream)) == 1;
}

void prepare_streams() {
  ::signal(SIGPIPE, SIG_IGN);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) >= 0) continue;
    // Gets the free number, and fails to read or write as a closed stream does.
    (void)::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

std::optional<std::string> read_line() {
  constexpr std::size_t longest_line = 4096;
  std::string line;
  while (line.size() < longest_line) {
    std::array<pollfd, 2> sources{{{STDIN_FILENO, POLLIN, 0}, {end_request_reader, POLLIN, 0}}};
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

}  // namespace orvex::platform
