#include "bench/upload_receivers.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "testing/virtual/real_peer.h"

namespace orvex::bench {
namespace {

namespace fs = std::filesystem;
using testing::steady_now;

const fs::path node_modules = "build/peers/node_modules";
const fs::path js_receiver = "bench/zmodem_js_receiver.js";

[[noreturn]] void receive(const testing::ReceiverScript& script, int fd, const fs::path& file) {
  dup2(fd, 0);
  close_range(1, ~0U, 0);  // the other ends, so that their closing shows
  testing::ScriptedReceiver receiver(script);
  receiver.hear("", steady_now());
  std::array<char, 4096> buffer;
  while (!receiver.over && !receiver.cancelled) {
    pollfd terminal{0, POLLIN, 0};
    poll(&terminal, 1, 1);
    const ssize_t got =
        (terminal.revents & (POLLIN | POLLHUP)) != 0 ? read(0, buffer.data(), buffer.size()) : 0;
    if (got < 0 || (got == 0 && (terminal.revents & POLLHUP) != 0)) break;
    receiver.hear({buffer.data(), static_cast<std::size_t>(got)}, steady_now());
    const std::string said = receiver.speak(steady_now());
    if (write(0, said.data(), said.size()) < 0) break;
  }
  std::ofstream(file, std::ios::binary) << receiver.file;
  _exit(0);
}

}  // namespace

bool is_there(Peer peer) {
  if (peer != Peer::zmodem_js) return true;
  return fs::exists(node_modules / "zmodem.js") && fs::exists(js_receiver) &&
         std::system("node --version >/dev/null 2>&1") == 0;
}

pid_t start_receiver(Peer peer, const testing::ReceiverScript& script, int fd,
                     const std::string& folder) {
  if (peer == Peer::rz) {
    return testing::start_on(fd, folder, {"rz", "--binary", "--overwrite", "-q"});
  }
  if (peer == Peer::zmodem_js) {
    return testing::start_on(fd, folder,
                             {"env", "NODE_PATH=" + fs::absolute(node_modules).string(), "node",
                              fs::absolute(js_receiver).string()});
  }
  const pid_t process = fork();
  if (process == 0) receive(script, fd, fs::path(folder) / "upload.bin");
  return process;
}

}  // namespace orvex::bench
