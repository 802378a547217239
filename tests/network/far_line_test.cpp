// The tool at a line whose other end is far away: it opens and sets it inside a pump.
#include <gtest/gtest.h>

#include "testing/virtual/desk.h"

namespace orvex::testing {
namespace {

constexpr std::size_t baud_2400 = 1;  // places in the list of rates
constexpr std::size_t baud_19200 = 4;
constexpr std::array scan_order{9600, 19200, 115200, 57600, 38400, 4800, 2400, 1200};

struct FarDesk : Desk {
  FarDesk() { line.latency = 50ms; }
  void start_at(int rate) {
    scanner.parameters.apply("<RSBAUD=" + std::to_string(rate) + ">");
    start();
  }
};

TEST(FarLine, each_rate_has_the_scanners_time_however_long_the_server_takes_to_set_it) {
  // The last one has the longest way that leaves the scanner at 1200 Bps its time.
  for (const auto& [latency, setting_time] : {std::pair<Time, Time>{50ms, 0ms},
                                              {50ms, 390ms},
                                              {50ms, 450ms},
                                              {50ms, 1700ms},
                                              {190ms, 0ms}}) {
    for (std::size_t turn = 0; turn < scan_order.size(); ++turn) {
      SCOPED_TRACE(scan_order[turn]);
      FarDesk desk;
      desk.line.latency = latency;
      desk.line.setting_time = setting_time;
      desk.start_at(scan_order[turn]);
      ASSERT_EQ(desk.line.frames.size(), turn + 2) << "a ping for each rate, and the first query";
      EXPECT_EQ(desk.line.settings.baud, scan_order[turn]);
      for (std::size_t i = 1; i <= turn; ++i) {
        const Time of_the_server = 2 * desk.line.latency + setting_time;
        EXPECT_EQ(desk.line.frames[i].at - desk.line.frames[i - 1].at, 500ms + of_the_server);
      }
    }
  }
}

TEST(FarLine, receive_and_send_keep_their_rules_at_50_ms_each_way) {
  for (const int rate : {9600, 2400}) {
    FarDesk desk;
    desk.start_at(rate);
    desk.press(&Program::cmdReceive_Click);
    EXPECT_EQ(desk.panel(2), "");
    desk.program.setup.choose(Field::RSBAUD, baud_19200);
    desk.press(&Program::cmdSend_Click);
    EXPECT_EQ(desk.panel(2), "");
    EXPECT_EQ(desk.line.settings.baud, 19200);
    desk.press(&Program::cmdReceive_Click);
    EXPECT_EQ(desk.panel(2), "");
    EXPECT_EQ(desk.buttons(), "SRFW");
    EXPECT_EQ(desk.windows.box_texts(), "");
  }
}

TEST(FarLine, an_answer_that_the_network_brings_after_the_tick_is_none) {
  FarDesk desk;
  desk.line.latency = 260ms;
  desk.windows.answers = {{Answer::cancel}};
  desk.start_at(9600);
  EXPECT_EQ(desk.windows.box_texts(), "[Connection Failed][The port is not open]");
}

/// What a user does while the server is waited for: at the start, in a search, in a send.
struct Meanwhile : FarDesk {
  void run(const std::function<void()>& act) {
    line.setting_time = 300ms;
    for (const Time at : {100ms, 500ms, 900ms, 1400ms}) windows.at(at, act);
    start_at(4800);
    if (windows.ended) return;
    windows.at(now() + 100ms, act);
    press(&Program::mnuauto_Click);
    program.setup.choose(Field::RSBAUD, baud_2400);
    for (const Time later : {200ms, 1000ms}) windows.at(now() + later, act);
    press(&Program::cmdSend_Click);
  }
};

TEST(FarLine, nothing_that_is_pressed_in_a_wait_for_the_server_starts_twice) {
  Meanwhile desk;
  desk.run([&] {
    const auto opens = desk.line.opens;
    const auto frames = desk.line.frames.size();
    desk.press(&Program::cmdReceive_Click);
    desk.press(&Program::cmdSend_Click);
    desk.press(&Program::mnuauto_Click);
    desk.press(&Program::Form4_Command1_Click);
    desk.press(&Program::mnuload_Click, 2);
    EXPECT_EQ(desk.line.opens, opens);
    EXPECT_EQ(desk.line.frames.size(), frames);
  });
  EXPECT_EQ(desk.windows.box_texts(), "");
  EXPECT_EQ(desk.line.settings.baud, 2400);
  EXPECT_EQ(desk.buttons(), "SRFW");
}

TEST(FarLine, an_exit_in_a_wait_for_the_server_ends_the_tool_and_closes_the_line) {
  for (const Time at : {100ms, 450ms, 900ms}) {
    Meanwhile desk;
    desk.line.setting_time = 300ms;
    desk.windows.at(at, [&] { desk.press(&Program::Form_Unload); });
    desk.start_at(4800);
    EXPECT_TRUE(desk.windows.ended);
    EXPECT_FALSE(desk.line.is_open());
    EXPECT_LE(desk.now(), at);
  }
}

TEST(FarLine, a_line_that_goes_in_a_wait_for_the_server_leaves_a_tool_that_can_go_on) {
  Meanwhile desk;
  desk.windows.answers = {{Answer::cancel}};
  desk.line.setting_time = 300ms;
  desk.windows.at(1000ms, [&] { desk.line.unplug(); });
  desk.start_at(4800);
  EXPECT_FALSE(desk.line.is_open());
  EXPECT_EQ(desk.form1().port_tip, "COM 1, /dev/virtual1: unplugged");
  desk.line.plug();
  desk.press(&Program::mnuauto_Click);
  EXPECT_EQ(desk.buttons(), "SRFW");
  desk.windows.at(desk.now() + 1000ms, [&] { desk.line.unplug(); });
  desk.program.setup.choose(Field::RSBAUD, baud_2400);
  desk.press(&Program::cmdSend_Click);
  EXPECT_EQ(desk.scanner.rate(), 2400);
  EXPECT_EQ(desk.panel(2), "") << "the scanner has taken the setup";
  EXPECT_FALSE(desk.line.is_open());
  desk.line.plug();
  desk.press(&Program::mnuauto_Click);
  EXPECT_EQ(desk.line.settings.baud, 2400);
}

}  // namespace
}  // namespace orvex::testing
