#include "discovery/auto_baud.h"

#include <gtest/gtest.h>

#include "testing/virtual/desk.h"

namespace orvex::testing {
namespace {

/// The box of a port that can't be opened.
const std::string no_port =
    "[Port is not available at COM:1/You can change the port settings from/"
    "PC Port Setting -> Manual Baud Setting.../]";

struct ScanTest : ::testing::Test, Desk {
  bool menus() {
    EXPECT_EQ(form1().mnuauto.Enabled, form1().mnumanual.Enabled);
    EXPECT_EQ(form1().mnuauto.Enabled, form1().mnuabout.Enabled);
    return form1().mnuauto.Enabled;
  }
};

TEST_F(ScanTest, eight_silent_rates_take_four_seconds_to_the_nanosecond) {
  scanner.faults.silent = simulator::always;
  windows.answers = {{Answer::cancel}};
  windows.at(1200ms, [&] {
    EXPECT_FALSE(menus());
    EXPECT_FALSE(form1().SSTab1.Enabled);
    EXPECT_FALSE(form1().Visible);
    EXPECT_TRUE(program.forms.form2.Visible);
    EXPECT_FALSE(program.forms.form2.Modal);
    EXPECT_EQ(program.forms.form2.Label1.Caption, " Orvex - 2.11");
    EXPECT_EQ(program.forms.form2.Label2.Caption, "COM:1 at");
    EXPECT_EQ(program.forms.form2.Label3.Caption, "115200");
    EXPECT_EQ(form1().FrameLED, Indicator::imgConnected);
  });
  start();
  EXPECT_EQ(windows.box_texts(), "[Connection Failed][The port is not open]");
  EXPECT_EQ(windows.boxes[0].box.buttons, Buttons::retry_cancel);
  EXPECT_EQ(windows.boxes[0].at, 4s);
  const int rates[]{9600, 19200, 115200, 57600, 38400, 4800, 2400, 1200};
  ASSERT_EQ(line.frames.size(), 8U);
  for (std::size_t i = 0; i < 8; ++i) {
    EXPECT_EQ(line.frames[i].text, "<TXPING:>");
    EXPECT_EQ(line.frames[i].baud, rates[i]);
    EXPECT_EQ(line.frames[i].at, i * 500ms);
  }
  EXPECT_LE(windows.pumps, 30) << "a wait without events stays in its pump";
  // After the cancel the port is closed; panel 1 and the lamp keep what they showed.
  EXPECT_FALSE(line.is_open());
  EXPECT_EQ(buttons(), "---W");
  EXPECT_TRUE(menus());
  EXPECT_TRUE(form1().SSTab1.Enabled);
  EXPECT_EQ(panel(1), "Settings: 9600,N,8,1  Com Port: 1");
  EXPECT_EQ(form1().port_tip, "COM 1, /dev/virtual1: closed");
  EXPECT_EQ(form1().FrameLED, Indicator::imgConnected);
  EXPECT_TRUE(form1().Timer1.Enabled());
  EXPECT_FALSE(program.forms.form2.Visible);
  EXPECT_TRUE(form1().Visible);
}

TEST_F(ScanTest, the_ticks_keep_their_rhythm_over_a_rate_that_begins_late) {
  scanner.faults.silent = simulator::always;
  windows.answers = {{Answer::ok, 200ms}, {Answer::cancel}};
  windows.at(500ms, [&] { windows.MsgBox({.text = "of another window"}); });
  start();
  ASSERT_GT(line.frames.size(), 2U);
  EXPECT_EQ(line.frames[1].at, 700ms);
  EXPECT_EQ(line.frames[2].at, 1000ms);
}

TEST_F(ScanTest, each_rate_is_found_at_its_try) {
  const struct {
    int rate;
    std::size_t tries;
  } table[]{{9600, 1},  {19200, 2}, {115200, 3}, {57600, 4},
            {38400, 5}, {4800, 6},  {2400, 7},   {1200, 8}};
  for (const bool junk : {false, true}) {
    for (const auto& row : table) {
      Desk desk;
      desk.scanner.rate(row.rate);
      desk.scanner.faults.junk_at_wrong_rate = junk;
      desk.start();
      ASSERT_GT(desk.line.frames.size(), row.tries);
      EXPECT_EQ(desk.line.frames[row.tries].text, "<APP1RV:>") << row.rate;
      EXPECT_EQ(desk.line.frames[row.tries - 1].at, (row.tries - 1) * 500ms) << row.rate;
      EXPECT_EQ(desk.panel(1), "Settings: " + std::to_string(row.rate) + ",N,8,1  Com Port: 1");
      EXPECT_EQ(desk.buttons(), "SRFW");
      EXPECT_TRUE(desk.form1().SSTab1.Enabled);
      EXPECT_TRUE(desk.form1().mnuauto.Enabled);
      EXPECT_FALSE(desk.program.forms.form2.Visible);
      EXPECT_FALSE(desk.form1().Timer1.Enabled());
      EXPECT_EQ(desk.windows.box_texts(), "");
    }
  }
}

TEST_F(ScanTest, an_ack_wins_over_the_tick_in_its_pass_and_counts_for_no_later_rate) {
  line.paced = false;
  scanner.options.ack_delay = 500ms;
  start();
  EXPECT_EQ(line.texts().substr(0, 18), "<TXPING:><APP1RV:>");
  for (const int threshold : {1, 0}) {
    LinkDesk desk;
    desk.line.paced = false;
    desk.scanner.rate(19200);
    desk.scanner.faults.silent = simulator::always;
    desk.state.PortCom = "1";
    desk.MSComm1.RThreshold(threshold);
    desk.windows.answers = {{Answer::cancel}};
    // It comes once the wait at 9600 is over, and is read at the rate of the next try.
    desk.windows.at(500ms, [&] { desk.line.inject("\x06"); });
    mnuauto_Click(desk.link);
    EXPECT_EQ(desk.windows.box_texts(), "[Connection Failed]") << threshold;
  }
}

TEST_F(ScanTest, noise_in_one_piece_with_the_ack_is_skipped) {
  for (const std::size_t size : {99U, 100U}) {
    Desk desk;
    desk.line.paced = false;
    desk.scanner.faults.junk_before_ack = std::string(size, '\xF8');
    desk.start();
    EXPECT_EQ(desk.line.texts(), "<TXPING:><APP1RV:>");
  }
}

TEST_F(ScanTest, each_retry_opens_the_port_again_and_starts_at_9600_behind_the_splash_window) {
  scanner.faults.silent = 2;
  windows.answers = {{Answer::retry, 10s}, {Answer::retry}};
  windows.at(6s, [&] {
    EXPECT_TRUE(program.forms.form2.Visible);
    EXPECT_FALSE(menus());
  });
  start();
  EXPECT_EQ(windows.box_texts(), "[Connection Failed][Connection Failed]") << "no step has failed";
  EXPECT_EQ(line.opens, 3);
  ASSERT_GT(line.frames.size(), 16U);
  EXPECT_EQ(line.frames[8].at, 14s);
  EXPECT_EQ(line.frames[16].at, 18s);
  EXPECT_EQ(panel(1), "Settings: 9600,N,8,1  Com Port: 1");
  EXPECT_EQ(buttons(), "SRFW");
}

TEST_F(ScanTest, a_step_that_failed_in_an_earlier_pass_is_told_and_the_run_goes_on) {
  for (const Time gone : {200ms, 1700ms, 3600ms, 0ms}) {
    Desk desk;
    desk.scanner.faults.silent = gone > 0s ? 1 : 8;
    desk.line.refuses_settings = gone == 0s;
    desk.windows.answers = {{Answer::retry, 1s}};
    if (gone > 0s) desk.windows.at(gone, [&] { desk.line.unplug(); });
    desk.windows.at(4500ms, [&] {
      desk.line.plug();
      desk.line.refuses_settings = false;
    });
    desk.start();
    EXPECT_EQ(desk.windows.box_texts(), "[Connection Failed]" + no_port) << gone.count();
    EXPECT_EQ(desk.panel(1), "Settings: 9600,N,8,1  Com Port: 1");
    EXPECT_EQ(desk.buttons(), "SRFW");
  }
}

TEST_F(ScanTest, a_port_that_cannot_be_opened_takes_the_closed_exit) {
  line.refuses_open = true;
  start();
  EXPECT_EQ(windows.box_texts().substr(0, no_port.size()), no_port);
  EXPECT_EQ(windows.boxes[0].box.icon, Icon::none);
  EXPECT_EQ(panel(1), "Settings: Closed");
  EXPECT_EQ(form1().port_tip, "COM 1, /dev/virtual1: held by another program");
  EXPECT_EQ(form1().FrameLED, Indicator::imgNotConnected);
  EXPECT_FALSE(form1().SSTab1.Enabled);
  EXPECT_FALSE(program.forms.form2.Visible);
  EXPECT_EQ(buttons(), "---W");
  EXPECT_TRUE(menus());
  line.refuses_open = false;
  press(&Program::mnuauto_Click);
  EXPECT_TRUE(form1().SSTab1.Enabled);
  EXPECT_EQ(buttons(), "SRFW");
  EXPECT_EQ(form1().port_tip, "/dev/virtual1");
  scanner.faults.silent = simulator::always;
  windows.answers = {{Answer::cancel}};
  windows.at(now() + 1s, [&] { line.unplug(); });
  press(&Program::mnuauto_Click);
  EXPECT_EQ(form1().port_tip, "COM 1, /dev/virtual1: unplugged") << "a cancel keeps the cause";
  EXPECT_EQ(buttons(), "---W");
}

TEST_F(ScanTest, a_port_that_goes_before_a_retry_leaves_the_splash_window) {
  scanner.faults.silent = simulator::always;
  windows.answers = {{Answer::retry, 1s}};
  windows.at(4500ms, [&] { line.unplug(); });
  start();
  EXPECT_EQ(windows.box_texts().substr(0, 19 + no_port.size()), "[Connection Failed]" + no_port);
  EXPECT_TRUE(program.forms.form2.Visible);
  EXPECT_TRUE(menus());
}

TEST_F(ScanTest, a_stored_port_that_is_none_is_told_and_the_present_one_is_scanned) {
  folder.write("Orvex.INI", "PORTSET=9600,n,8,1;");
  start();
  EXPECT_EQ(windows.box_texts(), "[Invalid port number]");
  EXPECT_EQ(line.port, 1);
  EXPECT_EQ(buttons(), "SRFW");
  // A port at which nobody answers is not stored.
  press(&Program::mnumanual_Click);
  program.forms.form4.Combo1 = {"Com 2", 1};
  press(&Program::Form4_Command1_Click);
  line.scanner_port = 2;
  press(&Program::mnuauto_Click);
  EXPECT_EQ(windows.box_texts(), "[Invalid port number][Invalid port number]");
  EXPECT_EQ(panel(1), "Settings: 9600,N,8,1  Com Port: 2");
}

TEST_F(ScanTest, the_stored_port_is_scanned_and_the_stored_settings_play_no_part) {
  const std::string stored = "PORTCOM=2;PORTSET=1200,o,8,1;SUPPSET=;\r\n";
  folder.write("Orvex.INI", stored);
  line.scanner_port = 2;
  start();
  EXPECT_EQ(panel(1), "Settings: 9600,N,8,1  Com Port: 2");
  EXPECT_EQ(line.frames[0].baud, 9600);
  EXPECT_EQ(content(folder / "Orvex.INI"), stored);
}

TEST_F(ScanTest, the_parity_comes_from_the_last_manual_setting) {
  scanner.parameters.apply("<RSPRTY=ODD>");
  windows.answers = {{Answer::cancel}};
  start();
  EXPECT_EQ(windows.boxes[0].box.text, "Connection Failed");
  press(&Program::mnumanual_Click);
  program.forms.form4.Combo3 = {"ODD", 1};
  press(&Program::Form4_Command1_Click);
  scanner.rate(115200);
  press(&Program::mnuauto_Click);
  EXPECT_EQ(panel(1), "Settings: 115200,O,8,1  Com Port: 1");
}

}  // namespace
}  // namespace orvex::testing
