#include <gtest/gtest.h>

#include "testing/virtual/desk.h"

namespace orvex::testing {
namespace {

struct ManualPortTest : ::testing::Test, Desk {
  ManualPortTest() {
    start();
    press(&Program::mnumanual_Click);
    windows.boxes.clear();
  }
  Form4& form4() { return program.forms.form4; }
  void open_port() { press(&Program::Form4_Command1_Click); }
  std::string stored() const { return content(folder / "Orvex.INI"); }
};

TEST_F(ManualPortTest, an_untouched_dialog_reopens_com_1_at_9600_and_stores_it) {
  EXPECT_EQ(form4().Combo1.Text, "Com 1");
  EXPECT_EQ(form4().Combo2.Text, "9600");
  EXPECT_EQ(form4().Combo3.Text, "NONE");
  const int opens = line.opens;
  open_port();
  EXPECT_EQ(line.opens, opens + 1);
  EXPECT_EQ(stored(), "PORTCOM=1;PORTSET=9600,N,8,1;SUPPSET=;\r\n");
  EXPECT_EQ(panel(1), "Settings: 9600,N,8,1  Com Port: 1");
  EXPECT_FALSE(form4().Visible);
  EXPECT_EQ(buttons(), "SRFW");
  EXPECT_EQ(form1().FrameLED, Indicator::imgConnected);
  folder.write("Orvex.INI", "untouched");
  open_port();
  EXPECT_EQ(stored(), "untouched") << "nothing differs from what is stored";
  line.scanner_port = 2;
  form4().Combo1 = {"Com 2", 1};
  open_port();
  EXPECT_EQ(stored(), "PORTCOM=2;PORTSET=9600,N,8,1;SUPPSET=;\r\n") << "the port alone differs";
  scanner.rate(19200);
  form4().Combo2.Text = "19200";
  open_port();
  EXPECT_EQ(stored(), "PORTCOM=2;PORTSET=19200,N,8,1;SUPPSET=;\r\n");
}

TEST(ManualPort, numbers_are_compared_as_such_before_they_are_stored) {
  const std::string stored = "PORTCOM=1.0;PORTSET=9600,N,8,1;";
  Desk desk;
  desk.folder.write("Orvex.INI", stored);
  desk.start();
  desk.press(&Program::mnumanual_Click);
  desk.press(&Program::Form4_Command1_Click);
  EXPECT_EQ(content(desk.folder / "Orvex.INI"), stored);
}

TEST_F(ManualPortTest, boxes_decide_by_position_or_text) {
  const struct {
    int port_index;
    const char* rate;
    ComboBox parity;
    const char* settings;  ///< null if the port isn't available
    const char* tip;
  } table[]{{0, "19200", {"EVEN", 2}, "19200,E,8,1", "/dev/virtual1"},
            {1, "115200", {"ODD", 1}, "115200,O,8,1", "/dev/virtual2"},
            {0, "2400", {"none", -1}, "2400,O,8,1", "/dev/virtual1"},
            {0, "1200", {"NONE", -1}, "1200,N,8,1", "/dev/virtual1"},
            {0, "9600", {"x", 0}, "9600,N,8,1", "/dev/virtual1"},
            {-1, "9600", {"NONE", 0}, nullptr, "There is no such port"},
            {5, "9600", {"NONE", 0}, nullptr, "COM 6: no such device"},
            {0, "fast", {"NONE", 0}, nullptr, "The port doesn't take this rate"},
            {0, "300", {"NONE", 0}, nullptr, "The port doesn't take this rate"},
            {0, "", {"NONE", 0}, nullptr, "The port doesn't take this rate"},
            {0, "9600,N,8,1", {"NONE", 0}, nullptr, "The port doesn't take this rate"}};
  for (const auto& row : table) {
    windows.boxes.clear();
    press(&Program::mnumanual_Click);
    form4().Combo1.ListIndex = row.port_index;
    form4().Combo2.Text = row.rate;
    form4().Combo3 = row.parity;
    line.close();
    open_port();
    if (row.settings != nullptr) {
      EXPECT_EQ(panel(1), std::string("Settings: ") + row.settings +
                              "  Com Port: " + std::to_string(row.port_index + 1));
      EXPECT_EQ(windows.box_texts(), "");
    } else {
      EXPECT_EQ(panel(1), "Settings: Closed") << row.rate;
      EXPECT_EQ(windows.box_texts(), "[Port is not available]") << row.rate;
    }
    EXPECT_EQ(form1().port_tip, row.tip) << row.rate;
    EXPECT_EQ(form4().Visible, row.settings == nullptr);
    EXPECT_EQ(buttons(), row.settings != nullptr ? "SRFW" : "----");
    EXPECT_EQ(form1().FrameLED == Indicator::imgConnected, row.settings != nullptr);
  }
}

TEST_F(ManualPortTest, the_buttons_stay_off_until_a_port_can_be_opened) {
  line.close();
  line.refuses_open = true;
  open_port();
  press(&Program::Form4_Command2_Click);
  EXPECT_FALSE(form4().Visible);
  EXPECT_EQ(windows.boxes[0].box.icon, Icon::exclamation);
  EXPECT_EQ(buttons(), "----");
  line.refuses_open = false;
  press(&Program::mnuauto_Click);
  EXPECT_EQ(buttons(), "SRF-") << "a scan that finds the scanner";
  open_port();
  EXPECT_EQ(buttons(), "SRFW");
}

TEST_F(ManualPortTest, an_answer_may_take_a_second) {
  line.paced = false;
  const std::string before = stored();
  scanner.options.ack_delay = 1s + 1ns;
  open_port();
  EXPECT_EQ(stored(), before);
  scanner.options.ack_delay = 1s;
  open_port();
  EXPECT_EQ(stored(), "PORTCOM=1;PORTSET=9600,N,8,1;SUPPSET=;\r\n");
}

TEST_F(ManualPortTest, a_silent_scanner_closes_the_dialog_after_a_second_without_a_word) {
  const std::string before = stored();
  press(&Program::mnuauto_Click);
  scanner.faults.silent = simulator::always;
  const Time clicked = now();
  line.paced = false;
  windows.at(clicked, [&] {  // it comes behind the opening, and before the ping
    line.inject("\x06");
    line.act();
  });
  open_port();
  EXPECT_EQ(now() - clicked, 1s);
  EXPECT_EQ(windows.box_texts(), "");
  EXPECT_EQ(stored(), before);
  EXPECT_FALSE(form4().Visible);
  EXPECT_EQ(buttons(), "SRFW");
  EXPECT_TRUE(line.is_open());
  press(&Program::cmdReceive_Click);
  EXPECT_EQ(panel(2), "Error in Receiving");
}

TEST_F(ManualPortTest, a_reopening_that_fails_counts_as_silence_also_right_after_a_scan) {
  const std::string before = stored();
  press(&Program::mnuauto_Click);  // its ACK is still there
  form4().Combo1 = {"Com 3", 2};   // which the machine doesn't have
  const Time clicked = now();
  open_port();
  EXPECT_EQ(now() - clicked, 1s);
  EXPECT_EQ(windows.box_texts(), "");
  EXPECT_FALSE(line.is_open());
  EXPECT_EQ(stored(), before);
  EXPECT_EQ(form1().port_tip, "COM 3: no such device");
  EXPECT_EQ(buttons(), "SRFW");
  EXPECT_FALSE(form4().Visible);
  press(&Program::mnuauto_Click);
  EXPECT_EQ(panel(1), "Settings: 9600,N,8,1  Com Port: 1");
}

/// Pulls the plug in one of the window system's coming turns.
struct UnplugAtTurn final : Actor {
  UnplugAtTurn(VirtualLine& of, int after) : line(of), turns(after) {}
  std::optional<Time> due() const override { return std::nullopt; }
  bool act() override {
    if (turns-- == 0) line.unplug();
    return false;
  }
  VirtualLine& line;
  int turns;
};

TEST_F(ManualPortTest, a_port_that_goes_at_any_turn_of_the_wait_is_not_stored) {
  int stored_ports = 0;
  for (int turn = 0; turn < 40; ++turn) {
    Desk desk;
    desk.start();
    desk.line.paced = false;
    desk.scanner.faults.junk_before_ack = "junk";
    UnplugAtTurn unplug(desk.line, turn);
    desk.windows.join(unplug);
    desk.press(&Program::mnumanual_Click);
    desk.press(&Program::Form4_Command1_Click);
    const bool kept = content(desk.folder / "Orvex.INI").find("9600,N") != std::string::npos;
    EXPECT_TRUE(desk.line.is_open() || !kept) << turn;
    stored_ports += kept ? 1 : 0;
  }
  EXPECT_GT(stored_ports, 0) << "the last turns come after the answer";
}

TEST_F(ManualPortTest, a_later_scan_uses_the_new_port_also_where_it_could_not_be_stored) {
  std::filesystem::remove_all(folder.path());
  line.scanner_port = 2;
  form4().Combo1 = {"Com 2", 1};
  open_port();
  EXPECT_EQ(windows.box_texts(), "");
  press(&Program::mnuauto_Click);
  EXPECT_EQ(panel(1), "Settings: 9600,N,8,1  Com Port: 2");
  std::filesystem::create_directory(folder.path());
  open_port();
  EXPECT_EQ(stored(), "(none)") << "the tool goes by what it would have stored";
}

TEST_F(ManualPortTest, the_boxes_outlast_a_cancel_and_go_with_the_close_control) {
  form4().Combo2.Text = "4800";
  press(&Program::Form4_Command2_Click);
  press(&Program::mnumanual_Click);
  EXPECT_EQ(form4().Combo2.Text, "4800");
  press(&Program::Form4_Close);
  EXPECT_FALSE(form4().Visible);
  press(&Program::mnumanual_Click);
  EXPECT_EQ(form4().Combo2.Text, "9600");
}

}  // namespace
}  // namespace orvex::testing
