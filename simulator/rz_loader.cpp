#include "simulator/rz_loader.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <system_error>
#include <vector>

namespace orvex::simulator {
namespace fs = std::filesystem;
namespace {

using namespace std::chrono_literals;

constexpr Time look_period = 5ms;

struct Pipe {
  int read_end = -1;
  int write_end = -1;
};

Pipe make_pipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  return {ends[0], ends[1]};
}

void set_non_blocking(int descriptor) {
  ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

fs::path private_folder() {
  std::string name = (fs::temp_directory_path() / "orvex-simulator-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), name);
  }
  return name;
}

/// Starts the program with its ends of the pipes and no signal blocked; gives an error number.
int spawn(pid_t& child, const std::string& program, const fs::path& folder, int input, int output) {
  std::vector<std::string> words{program, "--binary", "--overwrite", "--quiet"};
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (auto& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  ::sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  sigset_t ignored_here;
  ::sigemptyset(&ignored_here);
  ::sigaddset(&ignored_here, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &ignored_here);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  const int error =
      ::posix_spawnp(&child, program.c_str(), &actions, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return error;
}

}  // namespace

RzLoader::RzLoader(const std::string& program, int& watched, Time now)
    : watched_(watched), folder_(private_folder()), look_again_(now) {
  try {
    start(program);
  } catch (...) {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
    throw;
  }
}

RzLoader::~RzLoader() {
  if (child_ > 0) {
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
  }
  for (const int descriptor : {to_child_, from_child_}) {
    if (descriptor >= 0) ::close(descriptor);
  }
  watched_ = -1;
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

void RzLoader::start(const std::string& program) {
  const Pipe down = make_pipe();
  const Pipe up = make_pipe();
  const int error = spawn(child_, program, folder_, down.read_end, up.write_end);
  ::close(down.read_end);
  ::close(up.write_end);
  to_child_ = down.write_end;
  from_child_ = up.read_end;
  if (error != 0) {
    child_ = -1;
    ::close(to_child_);
    ::close(from_child_);
    throw std::system_error(error, std::generic_category(), program);
  }
  set_non_blocking(to_child_);
  set_non_blocking(from_child_);
  watched_ = from_child_;
}

void RzLoader::hear(std::string_view bytes, Time now) {
  unfed_ += bytes;
  feed(now);
}

void RzLoader::feed(Time now) {
  while (!unfed_.empty() && !finished_) {
    const auto put = ::write(to_child_, unfed_.data(), unfed_.size());
    if (put < 0 && errno == EINTR) continue;
    if (put < 0 && errno != EAGAIN) unfed_.clear();
    if (put <= 0) break;
    unfed_.erase(0, static_cast<std::size_t>(put));
  }
  if (!unfed_.empty()) look_again_ = now + look_period;
}

std::string RzLoader::say(Time now) {
  look_again_.reset();
  feed(now);
  std::string bytes;
  std::array<char, 4096> piece{};
  while (watched_ >= 0) {
    const auto got = ::read(from_child_, piece.data(), piece.size());
    if (got > 0) {
      bytes.append(piece.data(), static_cast<std::size_t>(got));
    } else if (got == 0) {
      watched_ = -1;
    } else if (errno != EINTR) {
      break;
    }
  }
  if (watched_ < 0 && !finished_) look_for_end(now);
  return bytes;
}

void RzLoader::look_for_end(Time now) {
  int status = 0;
  if (::waitpid(child_, &status, WNOHANG) == 0) {
    look_again_ = now + look_period;
    return;
  }
  child_ = -1;
  finished_ = true;
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) take_file();
}

void RzLoader::take_file() {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder_, error)) {
    if (!entry.is_regular_file(error)) continue;
    std::ostringstream text;
    text << std::ifstream(entry.path(), std::ios::binary).rdbuf();
    file_ = std::move(text).str();
  }
}

}  // namespace orvex::simulator
