// Uploads to a real receiver: rz of lrzsz.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "testing/virtual/real_peer.h"
#include "testing/virtual/temporary_folder.h"
#include "transfer/zmodem_course.h"
#include "transfer/zmodem_sender.h"

namespace orvex::testing {
namespace {

using namespace std::chrono_literals;
using State = FileEngine::State;

struct ZmodemToRz : ::testing::Test {
  pid_t start_rz(const Pty& pty) {
    return start_on(pty.slave(), folder.path(), {"rz", "--binary", "--overwrite", "-q"});
  }
  std::string received() const { return content(folder / "scanner.bin"); }

  TemporaryFolder folder;
};

TEST_F(ZmodemToRz, files_arrive_byte_for_byte) {
  const std::string firmware = std::string(100000, '\xFF') + "@\r@\x8D\xC0\r" + noise(50000);
  for (const std::string& data : {noise(262144), firmware, std::string(), std::string("x")}) {
    SCOPED_TRACE(data.size());
    Pty pty;
    const pid_t rz = start_rz(pty);
    ZmodemSender sender(std::make_unique<MemorySource>(data), steady_now());
    drive(sender, pty.master(), steady_now() + 20s);
    EXPECT_EQ(sender.state(), State::complete) << sender.reason();
    EXPECT_TRUE(sender.finished());
    EXPECT_EQ(wait_for(rz, 5s), 0);
    EXPECT_TRUE(received() == data);
  }
}

TEST_F(ZmodemToRz, the_users_stop_ends_rz_and_the_next_upload_starts_at_once) {
  const std::string data = noise(1 << 24);
  Pty pty;
  const pid_t rz = start_rz(pty);
  ZmodemSender stopped(std::make_unique<MemorySource>(data), steady_now());
  const Time stop = steady_now() + 60ms;
  drive(stopped, pty.master(), steady_now() + 20s, stop);
  EXPECT_LE(steady_now() - stop, 300ms);
  EXPECT_EQ(stopped.state(), State::failed);
  EXPECT_TRUE(stopped.finished());
  EXPECT_GT(stopped.progress(), 0U);
  EXPECT_GT(wait_for(rz, 1s), 0);
  const pid_t next = start_rz(pty);  // what the first rz said in the end is still to be read
  ZmodemSender sender(std::make_unique<MemorySource>(data.substr(0, 50000)), steady_now());
  drive(sender, pty.master(), steady_now() + 20s);
  EXPECT_EQ(sender.state(), State::complete) << sender.reason();
  EXPECT_EQ(wait_for(next, 5s), 0);
  EXPECT_TRUE(received() == data.substr(0, 50000));
}

}  // namespace
}  // namespace orvex::testing
