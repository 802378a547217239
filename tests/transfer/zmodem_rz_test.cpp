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

TEST(ZmodemToRz, files_arrive_byte_for_byte) {
  const std::string firmware = std::string(100000, '\xFF') + "@\r@\x8D\xC0\r" + noise(50000);
  for (const std::string& data : {noise(262144), firmware, std::string(), std::string("x")}) {
    SCOPED_TRACE(data.size());
    const TemporaryFolder folder;
    Pty pty;
    const pid_t rz = start_on(pty.slave(), folder.path(), {"rz", "--binary", "--overwrite", "-q"});
    ZmodemSender sender(std::make_unique<MemorySource>(data), steady_now());
    drive(sender, pty.master(), steady_now() + 20s);
    EXPECT_EQ(sender.state(), FileEngine::State::complete) << sender.reason();
    EXPECT_TRUE(sender.finished());
    EXPECT_EQ(wait_for(rz, 5s), 0);
    EXPECT_TRUE(content(folder / "scanner.bin") == data);
  }
}

}  // namespace
}  // namespace orvex::testing
