#include <gtest/gtest.h>

#include "virtual/desk.h"

namespace orvex::test {
namespace {

struct ManualPortTest : testing::Test, Desk {
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
}

TEST_F(ManualPortTest, boxes_decide_by_position_or_text) {
  const struct {
    int port_index;
    const char* rate;
    ComboBox parity;
    const char* settings;  ///< null where the port isn't available
  } table[]{{0, "19200", {"EVEN", 2}, "19200,E,8,1"}, {1, "115200", {"ODD", 1}, "115200,O,8,1"},
            {0, "2400", {"none", -1}, "2400,O,8,1"},  {0, "1200", {"NONE", -1}, "1200,N,8,1"},
            {0, "9600", {"x", 0}, "9600,N,8,1"},      {-1, "9600", {"NONE", 0}, nullptr},
            {5, "9600", {"NONE", 0}, nullptr},        {0, "fast", {"NONE", 0}, nullptr},
            {0, "300", {"NONE", 0}, nullptr},         {0, "", {"NONE", 0}, nullptr},
            {0, "9600,N,8,1", {"NONE", 0}, nullptr}};
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
  open_port();
  EXPECT_EQ(buttons(), "SRFW");
}

TEST_F(ManualPortTest, a_silent_scanner_closes_the_dialog_after_a_second_without_a_word) {
  const std::string before = stored();
  scanner.rate(38400);
  const Time clicked = now();
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

TEST_F(ManualPortTest, a_reopening_that_fails_counts_as_silence) {
  line.refuses_open = true;
  open_port();
  EXPECT_EQ(windows.box_texts(), "");
  EXPECT_FALSE(line.is_open());
  EXPECT_EQ(buttons(), "SRFW");
  EXPECT_FALSE(form4().Visible);
}

TEST_F(ManualPortTest, a_later_scan_uses_the_new_port_also_where_it_could_not_be_stored) {
  std::filesystem::remove_all(folder.path());
  line.scanner_port = 2;
  form4().Combo1 = {"Com 2", 1};
  open_port();
  EXPECT_EQ(windows.box_texts(), "");
  press(&Program::mnuauto_Click);
  EXPECT_EQ(panel(1), "Settings: 9600,N,8,1  Com Port: 2");
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
}  // namespace orvex::test
