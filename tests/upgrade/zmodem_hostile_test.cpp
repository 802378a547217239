// Receivers, files and users that end a transfer.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "upgrade/zmodem_codec.h"
#include "upgrade/zmodem_course.h"
#include "upgrade/zmodem_crc.h"
#include "upgrade/zmodem_sender.h"

namespace orvex::test {
namespace {

using namespace std::chrono_literals;
using std::string;
using State = FileEngine::State;

TEST(ZmodemSender, a_bad_answer_ends_the_transfer_with_its_own_reason) {
  const string data = noise(20000);
  const auto position = [](std::uint32_t place) { return answer(9, place); };
  const auto repeated = [](string once, int times) {
    string all;
    for (int i = 0; i < times; ++i) all += once;
    return all;
  };
  const string cancel(5, '\x18');
  const struct {
    const char* kind;
    Step step;
    string says;
    Time every, within;
    string reason;
  } cases[] = {
      {"ZRPOS beyond the file", Step::offer, position(20001), {}, 1s, "beyond the end"},
      {"ZRPOS beyond the file", Step::data, position(0xFFFFFFFF), {}, 1s, "beyond the end"},
      {"ZACK of the future", Step::data, answer(3, 19000), {}, 1s, "never sent"},
      {"ZFERR", Step::data, answer(12, 0), {}, 1s, "could not write"},
      {"ZABORT", Step::end, answer(7, 0), {}, 1s, "aborted"},
      {"ZSKIP", Step::offer, answer(5, 0), {}, 1s, "refused"},
      {"ZSKIP", Step::data, answer(5, 0), {}, 1s, "refused"},
      {"ZFIN", Step::data, answer(8, 0), {}, 1s, "too early"},
      {"five CAN", Step::start, cancel, {}, 1s, "cancelled"},
      {"five CAN", Step::data, cancel, {}, 1s, "cancelled"},
      {"ESC8", Step::start, answer(1, 0xA3000000), {}, 1s, "seven-bit"},
      {"ZRPOS ten times", Step::data, repeated(position(4096), 10), {}, 1s, "again and again"},
      {"ZNAK ten times", Step::offer, repeated(answer(6, 0), 10), {}, 1s, "again and again"},
      {"ZNAK again and again", Step::data, answer(6, 0), 1s, 11s, "again and again"},
      {"ZCRC again and again", Step::data, answer(13, 0), 1s, 11s, "again and again"},
      {"ZCHALLENGE again and again", Step::offer, answer(14, 7), 20ms, 1s, "again and again"},
      {"ZACK of the same place", Step::data, answer(3, 4096), 1s, 16s, "stopped answering"},
      {"ZRINIT again and again", Step::data, answer(1, 0x23000000), 1s, 16s, "stopped answering"},
      {"ZRINIT again and again", Step::offer, answer(1, 0x23000000), 1s, 31s, "did not start"},
      {"two places in turn", Step::data, position(4096) + position(4095), 1s, 121s, "too slowly"},
      {"noise", Step::data, noise(100), 10ms, 16s, "stopped answering"},
      {"silence", Step::start, "", {}, 31s, "did not ask"},
      {"silence", Step::offer, "", {}, 31s, "did not start"},
      {"silence", Step::data, "", {}, 16s, "stopped answering"},
      {"silence", Step::end, "", {}, 121s, "did not confirm"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(string(c.kind) + " at step " + std::to_string(static_cast<int>(c.step)));
    Course course;
    course.receiver = {.turns_bad = c.step, .turns_bad_at = 5120, .says = c.says, .every = c.every};
    const Outcome outcome = send(data, course);
    expect_failed(outcome, c.reason);
    EXPECT_LE(outcome.took - outcome.receiver.turned_at, c.within + 100ms);
    EXPECT_LE(outcome.receiver.file.size(), data.size());
    EXPECT_EQ(outcome.receiver.cancelled, c.says != cancel || c.step == Step::start);
  }
}

TEST(ZmodemSender, a_receiver_that_takes_a_byte_now_and_then_is_given_up) {
  Course course;
  course.receiver = {.turns_bad = Step::data, .turns_bad_at = 5120};
  course.each_step = [taken = 4096U](FileEngine& engine, Time now) mutable {
    if (now % 10s == 0s && now > 0s) engine.receive(answer(3, ++taken), now);
  };
  const Outcome outcome = send(noise(20000), course);
  expect_failed(outcome, "too slowly");
  EXPECT_LE(outcome.took, 121s);
}

TEST(ZmodemSender, the_crc_of_a_large_file_is_taken_in_steps) {
  const string data(8000000, 'x');
  ZmodemSender sender(std::make_unique<MemorySource>(data), 0s);
  sender.receive(answer(1, 0x23000000), 0s);
  while (!sender.transmit(100, 0s).empty()) {
  }
  sender.receive(answer(13, 0), 1s);
  int steps = 0;
  string said;
  for (; said.empty() && steps < 1000; ++steps, said = sender.transmit(100, 1s)) {
    ASSERT_LE(sender.wake().value(), 1s);
    sender.tick(1s);
  }
  EXPECT_EQ(said, zmodem_hex_header({ZmodemFrame::zcrc, zmodem_crc32(data)}));
  EXPECT_GE(steps, 100);
}

TEST(ZmodemSender, a_file_that_can_not_be_read_to_its_end_ends_the_transfer) {
  ZmodemSender sender(std::make_unique<MemorySource>(noise(20000), 9000), Time{});
  const Outcome outcome = run(sender, {});
  expect_failed(outcome, "could not be read");
  EXPECT_TRUE(outcome.receiver.cancelled);
  EXPECT_LE(outcome.receiver.file.size(), 9000U);
}

TEST(ZmodemSender, the_users_stop_reaches_the_receiver_at_once_from_every_step) {
  for (const Time when : {0ms, 3ms, 8ms, 700ms, 1500ms, 1780ms}) {
    SCOPED_TRACE(when / 1ms);
    Course course;
    course.each_step = [when](FileEngine& engine, Time now) {
      if (now == when) engine.cancel(now);
    };
    const Outcome outcome = send(noise(20000), course);
    expect_failed(outcome, "stopped by the user");
    EXPECT_TRUE(outcome.receiver.cancelled);
    EXPECT_LE(outcome.took - when, 10ms);
    EXPECT_TRUE(outcome.there.ends_with(string(8, '\x18') + string(10, '\b')));
  }
}

TEST(ZmodemSender, nothing_in_the_farewell_undoes_a_complete_transfer_or_cuts_it_short) {
  const string data = noise(3000);
  for (const string& says :
       {string(), string(5, '\x18'), answer(12, 0), answer(9, 0), answer(7, 0), noise(500)}) {
    Course course;
    course.receiver = {.turns_bad = Step::farewell, .says = says};
    bool discarded = false;
    course.each_step = [&](FileEngine& engine, Time) {
      if (engine.state() == State::complete) discarded = discarded || engine.take_discard();
    };
    const Outcome outcome = send(data, course);
    expect_complete(outcome, data);
    EXPECT_FALSE(discarded);
    EXPECT_LE(outcome.took, 11s);
    EXPECT_NE(outcome.there.find("**\030B0800000000022d\r\n"), string::npos);
  }
}

}  // namespace
}  // namespace orvex::test
