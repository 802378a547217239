// Honest receivers: what a transfer costs, and what it takes to complete.

#include "transfer/zmodem_sender.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "transfer/zmodem_codec.h"
#include "transfer/zmodem_course.h"
#include "transfer/zmodem_crc.h"

namespace orvex::testing {
namespace {

using namespace std::chrono_literals;
using std::string;
using State = FileEngine::State;

TEST(ZmodemSender, files_of_every_size_arrive_whole_with_their_name_size_time_and_mode) {
  for (const std::size_t size : {0U, 1U, 1023U, 1024U, 1025U, 2048U, 5000U, 70000U}) {
    const string data = noise(size);
    const Outcome outcome = send(data, {});
    expect_complete(outcome, data);
    EXPECT_EQ(outcome.receiver.offer, "scanner.bin" + string(1, '\0') + std::to_string(size) +
                                          " 14524770400 100644" + '\0');
    EXPECT_EQ(outcome.receiver.offer_flags, 0x01000000U) << "binary";
    EXPECT_TRUE(outcome.receiver.over);
    EXPECT_EQ(outcome.receiver.complaints, 0);
  }
}

TEST(ZmodemSender, keeps_to_what_each_kind_of_receiver_announces) {
  const string data = "@\r" + string("\x01\x8D\x7F", 3) + noise(20000);
  const struct {
    const char* kind;
    std::uint32_t zrinit;
    bool request_seen, crc32_seen;
    int waits;  // ZCRCW, with the one of ZFILE
  } cases[] = {
      {"full duplex, CRC-32", 0x23000000, true, true, 1},
      {"CRC-16", 0x03000000, true, false, 1},
      {"half duplex", 0x22000000, false, true, 5},
      {"can't receive while it writes", 0x21000000, false, true, 20},
      {"neither", 0x00000000, false, false, 20},
      {"a buffer of 1,500 bytes", 0x230005DC, false, true, 14},
      {"a buffer of 100 bytes", 0x23000064, false, true, 201},
      {"escaped controls", 0x63000000, true, true, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.kind);
    Course course;
    course.receiver.zrinit = c.zrinit;
    course.receiver.write_time = (c.zrinit & 0x03000000) == 0x03000000 ? Time{} : 5ms;
    const Outcome outcome = send(data, course);
    expect_complete(outcome, data);
    EXPECT_EQ(outcome.there.find("\x18j") != string::npos, c.request_seen);
    EXPECT_EQ(outcome.there.find("*\030C") != string::npos, c.crc32_seen);
    EXPECT_EQ(times("\030k", outcome.there), c.waits);
    const auto bare_control = [](char byte) { return (byte & 0x60) == 0 && byte != 0x18; };
    const std::string_view in_frames =
        std::string_view(outcome.there).substr(100, outcome.there.size() - 200);
    EXPECT_EQ(std::any_of(in_frames.begin(), in_frames.end(), bare_control),
              (c.zrinit & 0x40000000) == 0);
  }
}

TEST(ZmodemSender, few_answers_are_asked_for_where_the_line_outruns_its_rate_and_only_there) {
  const string data = noise(524288);
  const struct {
    Time byte_time;
    Time step;
    Damage there;
    int least, most;  // answers
  } cases[]{{Time(86806), 1ms, {}, 256, 600},
            {Time(86806), 1ms, {.flip_every = 10000}, 256, 600},
            {1us, 100us, {}, 16, 64},
            {1us, 100us, {.flip_every = 100000}, 16, 128}};
  for (const auto& c : cases) {
    Course course;
    course.byte_time = c.byte_time;
    course.step = c.step;
    course.there = c.there;
    course.driver_room = 32768;
    const Outcome outcome = send(data, course);
    expect_complete(outcome, data);
    const int answers = times("B03", outcome.back);
    EXPECT_GE(answers, c.least);
    EXPECT_LE(answers, c.most);
  }
}

// Seconds at 115,200 bits a second, 11,520 bytes a second.
TEST(ZmodemSender, every_line_and_every_loader_gets_the_file_in_its_time) {
  constexpr std::uint32_t buffer_of_1_kb = 0x23000400;
  const struct {
    const char* kind;
    std::size_t kibibytes;
    double seconds;
    ReceiverScript receiver = {};
    Damage there = {}, back = {};
    Time latency{};
    std::size_t deep = 0;
  } cases[] = {
      {"clean", 256, 23.6},
      {"16 ms of latency", 256, 23.8, {}, {}, {}, 16ms},
      {"200 ms of latency", 256, 25.4, {}, {}, {}, 200ms},
      {"200 ms, a flip every 100 kB", 256, 28.9, {}, {.flip_every = 100000}, {}, 200ms},
      {"a flip every 100 kB", 256, 23.8, {}, {.flip_every = 100000}},
      {"a flip every 10 kB", 256, 26.7, {}, {.flip_every = 10000}},
      {"a drop every 64 kB", 256, 24, {}, {.drop_every = 65536}},
      {"deep, a flip every 10 kB", 256, 29.9, {}, {.flip_every = 10000}, {}, {}, 4096},
      {"every 40th answer damaged", 256, 23.7, {}, {}, {.flip_every = 809}},
      {"both ways", 256, 50, {}, {.flip_every = 50001, .drop_every = 70001}, {.drop_every = 997}},
      {"writes 1 kB in 20 ms",
       128,
       15,
       {.zrinit = buffer_of_1_kb, .write_time = 20ms, .deaf_while_writing = true}},
      {"complains only when asked", 64, 6.7, {.complains = false}, {.flip_every = 20000}},
      {"1 kB, answers damaged",
       32,
       13,
       {.zrinit = buffer_of_1_kb, .write_time = 5ms, .deaf_while_writing = true},
       {},
       {.flip_every = 50}},
      {"erases 15 s at each ZFILE", 64, 22, {.erase_time = 15s, .erases = 9}},
      {"the same, keeps 1 kB", 64, 22, {.erase_time = 15s, .erases = 9, .keeps = 1024}},
      {"erases 35 s", 64, 41, {.erase_time = 35s}},
      {"erases 35 s at each ZFILE", 64, 41, {.erase_time = 35s, .erases = 9}},
      {"deep, asks twice after 35 s", 64, 41, {.erase_time = 35s}, {}, {}, {}, 4096},
      {"never answers a request", 64, 6, {.answers_requests = false}},
      {"answers nothing within the file, for longer than an answer is waited for",
       800,
       85,
       {.answers_requests = false, .answers_waits = false}},
      {"deep, a flip every 300 bytes", 32, 60, {}, {.flip_every = 300}, {}, {}, 4096},
      {"deep, a flip every 1,000 bytes", 32, 60, {}, {.flip_every = 1000}, {}, {}, 4096},
      {"deep, a flip every 1,300 bytes", 32, 60, {}, {.flip_every = 1300}, {}, {}, 4096},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.kind);
    const string data = noise(c.kibibytes * 1024);
    Course course{c.receiver, c.there, c.back, c.latency, c.deep};
    const Outcome outcome = send(data, course);
    expect_complete(outcome, data);
    EXPECT_LE(outcome.took / 1ms, c.seconds * 1000);
    EXPECT_LE(outcome.receiver.erased, 1);
  }
}

TEST(ZmodemSender, no_rhythm_and_no_chance_of_damage_on_a_deep_line_keeps_a_file_out) {
  const string data = noise(32768);
  Course course;
  course.deep = 4096;
  for (std::size_t every = 2200; every <= 2240; every += 2) {
    SCOPED_TRACE(every);
    course.there = {.flip_every = every};
    expect_complete(send(data, course), data);
  }
  for (std::uint32_t seed = 1; seed <= 16; ++seed) {
    SCOPED_TRACE(seed);
    course.there = {.flip_one_in = 1000, .seed = seed};
    course.back = {};
    expect_complete(send(data, course), data);
    course.there = {.flip_one_in = 256, .seed = seed};
    course.back = {.flip_one_in = 32, .seed = seed};
    expect_complete(send(data, course), data);
  }
}

TEST(ZmodemSender, one_lost_or_damaged_byte_on_either_way_is_soon_made_up_for) {
  const string data = noise(300);
  for (const std::uint32_t zrinit : {0x23000000U, 0x21000080U}) {
    Course course;
    course.receiver.zrinit = zrinit;
    const Outcome clean = send(data, course);
    for (const bool there : {true, false}) {
      const std::size_t length = (there ? clean.there : clean.back).size();
      for (std::size_t at = 0; at < 2 * length; ++at) {
        SCOPED_TRACE((there ? "there, byte " : "back, byte ") + std::to_string(at / 2));
        Course damaged = course;
        Damage& damage = there ? damaged.there : damaged.back;
        (at % 2 == 0 ? damage.drop_at : damage.flip_at) = at / 2;
        const Outcome outcome = send(data, damaged);
        expect_complete(outcome, data);
        EXPECT_LE(outcome.took - clean.took, 11s) << "one repeat at most";
      }
    }
  }
}

TEST(ZmodemSender, unusual_but_honest_receivers_get_the_file) {
  const string data = noise(20000);
  const string late(string(10, '\x18') + string(10, '\b'));
  const struct {
    const char* kind;
    ReceiverScript receiver;
    string at_start, on_the_way, at_end = "";
  } cases[] = {
      {"never answers a request", {.answers_requests = false}, "", ""},
      {"resumes", {.first_place = 7001}, "", ""},
      {"has it all", {.first_place = 20000}, "", ""},
      {"is slow to answer", {.write_time = 300ms}, "", ""},
      {"doubled and late ZRINIT", {}, answer(1, 0x23000000), answer(1, 0x23000000)},
      {"the end of an earlier transfer", {}, late + answer(9, 5) + answer(3, 9), ""},
      {"challenge", {}, answer(14, 77), ""},
      {"asks to repeat", {}, answer(6, 0), answer(6, 0), answer(6, 0)},
      {"asks for the CRC", {}, "", answer(13, 0)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.kind);
    Course course;
    course.receiver = c.receiver;
    bool said = false;
    int steps_at_end = 0;
    course.each_step = [&](FileEngine& engine, Time now) {
      if (now == Time{}) engine.receive(c.at_start, now);
      if (!said && engine.progress() > 9000) engine.receive(c.on_the_way, now), said = true;
      const bool farewell_sent = engine.state() == State::complete && ++steps_at_end == 2;
      if (farewell_sent) engine.receive(c.at_end, now);
    };
    const Outcome outcome = send(data, course);
    const std::size_t start = c.receiver.first_place;
    EXPECT_EQ(outcome.state, State::complete) << outcome.reason;
    EXPECT_TRUE(outcome.receiver.file.substr(start) == data.substr(start));
    EXPECT_LE(outcome.took, 8s);
    const string crc = zmodem_hex_header({ZmodemFrame::zcrc, zmodem_crc32(data)});
    EXPECT_EQ(outcome.there.find(crc) != string::npos, c.on_the_way == answer(13, 0));
    const string end = answer(8, 0);
    const auto first_end = outcome.there.find(end);
    EXPECT_EQ(outcome.there.find(end, first_end + 1) != string::npos, !c.at_end.empty());
    const string challenged = answer(3, 77);
    EXPECT_EQ(outcome.there.find(challenged) != string::npos, c.at_start == answer(14, 77));
  }
}

TEST(ZmodemSender, slow_lines_get_pieces_of_about_a_second) {
  for (const auto& [rate, pieces] : {std::pair{300U, 25}, {1200U, 24}, {2400U, 24}, {9600U, 29}}) {
    SCOPED_TRACE(rate);
    const string data = noise(3 * rate);
    Course course;
    course.byte_time = Time(10'000'000'000 / rate);
    course.step = 5ms;
    ZmodemSender sender(std::make_unique<MemorySource>(data), Time{}, rate);
    const Outcome outcome = run(sender, course);
    expect_complete(outcome, data);
    EXPECT_EQ(outcome.receiver.complaints, 0);
    int ends = -1;  // that of the offer
    for (const char* end : {"\030h", "\030i", "\030j", "\030k"}) ends += times(end, outcome.there);
    EXPECT_EQ(ends, pieces);
  }
}

}  // namespace
}  // namespace orvex::testing
