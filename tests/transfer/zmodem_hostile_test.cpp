// Receivers, files and users that end a transfer.

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

#include "transfer/zmodem_codec.h"
#include "transfer/zmodem_course.h"
#include "transfer/zmodem_crc.h"
#include "transfer/zmodem_sender.h"

namespace orvex::testing {
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
  const string end = answer(8, 0);
  const struct {
    const char* kind;
    Step step;
    string says;
    Time every, least, most;
    string reason;
  } cases[] = {
      {"ZRPOS beyond the file", Step::offer, position(20001), {}, 0s, 1s, "beyond the end"},
      {"ZRPOS beyond the file", Step::data, position(0xFFFFFFFF), {}, 0s, 1s, "beyond the end"},
      {"ZACK of the future", Step::data, answer(3, 19000), {}, 0s, 1s, "never sent"},
      {"ZFERR", Step::data, answer(12, 0), {}, 5s, 6s, "could not write"},
      {"ZABORT", Step::end, answer(7, 0), {}, 5s, 6s, "aborted"},
      {"ZSKIP", Step::offer, answer(5, 0) + end, {}, 0s, 1s, "refused"},
      {"ZSKIP", Step::data, answer(5, 0), {}, 5s, 6s, "refused"},
      {"ZFIN", Step::data, end, {}, 5s, 6s, "too early"},
      {"ZFIN again and again", Step::data, end, 1s, 1s, 2s, "too early"},
      {"five CAN", Step::start, cancel, {}, 0s, 1s, "cancelled"},
      {"five CAN", Step::data, cancel, {}, 0s, 1s, "cancelled"},
      {"ZCAN", Step::offer, answer(16, 0), {}, 0s, 1s, "cancelled"},
      {"ESC8", Step::start, answer(1, 0xA3000000), {}, 0s, 1s, "seven-bit"},
      {"ZRPOS 200 times", Step::data, repeated(position(4096), 200), {}, 0s, 1s, "again and again"},
      {"ZRPOS for ever", Step::data, position(4096), 1s, 59s, 61s, "no answer for 60 s"},
      {"ZNAK ten times", Step::offer, answer(6, 0), 100ms, 0s, 2s, "again and again"},
      {"ZNAK for ever", Step::data, answer(6, 0), 1s, 59s, 61s, "no answer for 60 s"},
      {"ZCRC for ever", Step::data, answer(13, 0), 1s, 9s, 12s, "again and again"},
      {"ZCHALLENGE for ever", Step::offer, answer(14, 7), 20ms, 0s, 1s, "again and again"},
      {"ZACK of the same place", Step::data, answer(3, 4096), 1s, 59s, 61s, "no answer for 60 s"},
      {"ZRINIT for ever", Step::data, answer(1, 0x23000000), 1s, 59s, 61s, "no answer for 60 s"},
      {"ZRINIT for ever", Step::offer, answer(1, 0x23000000), 1s, 9s, 13s, "again and again"},
      {"ZRPOS to the end", Step::end, position(20000), 9s, 119s, 121s, "did not confirm"},
      {"two places", Step::data, position(4096) + position(4095), 1s, 59s, 61s, "no answer"},
      {"noise", Step::data, noise(100), 10ms, 59s, 61s, "no answer for 60 s"},
      {"ZNAK for ever", Step::start, answer(6, 0), 100ms, 29s, 31s, "did not ask"},
      {"silence", Step::start, "", {}, 29s, 31s, "did not ask"},
      {"silence", Step::offer, "", {}, 99s, 101s, "did not start"},
      {"silence", Step::data, "", {}, 59s, 61s, "no answer for 60 s"},
      {"silence", Step::end, "", {}, 119s, 121s, "did not confirm"},
  };
  const std::set<string> refusals{"could not write", "aborted", "refused", "too early"};
  for (const auto& c : cases) {
    SCOPED_TRACE(string(c.kind) + " at step " + std::to_string(static_cast<int>(c.step)));
    Course course;
    course.receiver = {.turns_bad = c.step, .turns_bad_at = 5120, .says = c.says, .every = c.every};
    const Outcome outcome = send(data, course);
    expect_failed(outcome, c.reason);
    const Time took = outcome.took - outcome.receiver.turned_at;
    EXPECT_GE(took, c.least);
    EXPECT_LE(took, c.most);
    EXPECT_LE(outcome.receiver.file.size(), outcome.progress + 16384) << "sent into a silence";
    EXPECT_LE(times(answer(0, 0), outcome.there), 13) << "ten for ZNAKs, and one every 10 s";
    const bool farewell = outcome.there.find(end) != string::npos;
    const bool quiet = c.reason == "cancelled" && c.step != Step::start;
    EXPECT_EQ(outcome.receiver.cancelled, !farewell && !quiet);
    EXPECT_EQ(farewell, refusals.contains(c.reason));
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

TEST(ZmodemSender, the_offer_is_repeated_where_it_is_wanted_and_else_not_before_45_s) {
  const string ready = answer(1, 0x23000000);
  const struct {
    const char* kind;
    string says;
    Time at;
    int after_44_s, after_46_s, after_99_s;  // offers
  } cases[] = {
      {"silence", "", 1s, 1, 2, 3},
      {"ZRINITs that crossed the offer", ready + ready, 300ms, 1, 2, 3},
      {"ZRINIT", ready, 3s, 2, 2, 4},
      {"ZNAK", answer(6, 0), 300ms, 2, 3, 4},
      {"chatter", "erasing sector 12 ...\r\n", 3s, 1, 2, 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.kind);
    ZmodemSender sender(std::make_unique<MemorySource>(noise(5000)), 0s);
    sender.receive(ready, 0s);
    int offers = 0, at_44_s = 0, at_46_s = 0;
    for (Time now = 0s; now <= 99s; now += 100ms) {
      if (now == c.at) sender.receive(c.says, now);
      sender.tick(now);
      while (!sender.transmit(1024, now).empty()) ++offers;
      if (now == 44s) at_44_s = offers;
      if (now == 46s) at_46_s = offers;
    }
    EXPECT_EQ(at_44_s, c.after_44_s);
    EXPECT_EQ(at_46_s, c.after_46_s);
    EXPECT_EQ(offers, c.after_99_s);
    EXPECT_EQ(sender.state(), State::running);
  }
}

TEST(ZmodemSender, a_phase_has_its_time_from_when_its_first_bytes_are_gone) {
  ZmodemSender sender(std::make_unique<MemorySource>(noise(5000)), 0s);
  EXPECT_EQ(sender.transmit(0, 20s), "") << "the line is busy";
  EXPECT_NE(sender.transmit(1024, 25s), "");
  sender.tick(54s);
  EXPECT_EQ(sender.state(), State::running);
  sender.tick(56s);
  EXPECT_EQ(sender.state(), State::failed);
}

TEST(ZmodemSender, a_file_counts_as_taken_only_once_its_end_has_left) {
  const string ready = answer(1, 0x23000000);
  ZmodemSender sender(std::make_unique<MemorySource>(""), 0s);
  sender.receive(ready, 0s);
  while (!sender.transmit(100, 0s).empty()) {
  }
  sender.receive(answer(9, 0), 0s);
  EXPECT_EQ(sender.transmit(1, 0s).size(), 1U);
  sender.receive(ready, 0s);
  EXPECT_EQ(sender.state(), State::running);
  while (!sender.transmit(100, 0s).empty()) {
  }
  sender.receive(ready, 0s);
  EXPECT_EQ(sender.state(), State::complete);
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
  for (const Time crc_asked_for : {Time(1ms), Time::max()}) {
    ZmodemSender sender(std::make_unique<MemorySource>(noise(20000), 9000), Time{});
    Course course;
    course.each_step = [&](FileEngine& engine, Time now) {
      if (now == crc_asked_for) engine.receive(answer(1, 0x23000000) + answer(13, 0), now);
    };
    const Outcome outcome = run(sender, course);
    expect_failed(outcome, "could not be read");
    EXPECT_TRUE(outcome.receiver.cancelled);
    EXPECT_LE(outcome.receiver.file.size(), 9000U);
  }
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

TEST(ZmodemSender, what_is_asked_for_again_goes_out_at_once_and_not_for_ever) {
  ZmodemSender sender(std::make_unique<MemorySource>(""), Time{});
  const auto sends_at_each_znak = [&] {
    int times = 0;
    for (; times < 100 && !sender.transmit(1000, Time{}).empty(); ++times) {
      sender.receive(answer(6, 0), Time{});
    }
    return times;
  };
  EXPECT_EQ(sends_at_each_znak(), 10) << "ZRQINIT";
  const string zrinit = answer(1, 0x23000000);
  for (const string& says : {zrinit, answer(9, 0), zrinit}) {
    sender.receive(says, Time{});
    if (sender.state() == State::running) sender.transmit(1000, Time{});
  }
  EXPECT_EQ(sender.state(), State::complete);
  EXPECT_EQ(sends_at_each_znak(), 5) << "ZFIN";
}

}  // namespace
}  // namespace orvex::testing
