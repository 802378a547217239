#include "program/program.h"

#include <gtest/gtest.h>

#include "testing/virtual/desk.h"

namespace orvex::testing {
namespace {

using Handler = void (Program::*)();

struct Job {
  const char* name;
  Handler handler;
  const char* buttons;  ///< while it runs
};
constexpr Job jobs[]{{"send", &Program::cmdSend_Click, "----"},
                     {"receive", &Program::cmdReceive_Click, "----"},
                     {"factory default", &Program::cmdFactory_Click, "----"},
                     {"scan", &Program::mnuauto_Click, "SRFW"},
                     {"manual port", &Program::Form4_Command1_Click, "----"}};

struct ProgramTest : ::testing::Test, Desk {};

TEST_F(ProgramTest, a_start_places_the_window_and_keeps_the_labels_empty) {
  start();
  EXPECT_EQ(form1().geometry.Left, (15360 - 8980) / 2);
  EXPECT_EQ(form1().geometry.Top, (11520 - 7815) / 2);
  EXPECT_EQ(form1().FrameLED_offset, 30);
  EXPECT_EQ(form1().Caption, " Orvex - 2.11");
  EXPECT_EQ(form1().SSTab1.Tab, 0);
  EXPECT_TRUE(form1().Visible);
  EXPECT_EQ(form1().labRevision[1].Caption, "");
  EXPECT_EQ(panel(2), "TIME OUT COUNT = 0");
  EXPECT_EQ(line.texts(), "<TXPING:><APP1RV:>");
}

TEST_F(ProgramTest, no_job_starts_while_another_runs) {
  for (const Job& outer : jobs) {
    Desk desk;
    desk.start();
    desk.press(&Program::mnumanual_Click);
    desk.scanner.faults.silent = simulator::always;
    desk.windows.answers = {{Answer::cancel}};
    const std::size_t before = desk.line.frames.size();
    std::string first;
    desk.windows.at(desk.now() + 100ms, [&] {
      first = desk.line.frames.back().text;
      EXPECT_EQ(desk.buttons(), outer.buttons) << outer.name;
      for (const Job& inner : jobs) (desk.program.*inner.handler)();
      desk.program.mnuload_Click(2);
      desk.program.mnuTable_Click(4);
      EXPECT_EQ(desk.form1().SSTab1.Tab, 4);
    });
    desk.press(outer.handler);
    EXPECT_EQ(desk.windows.dialogs.size(), 0U) << outer.name;
    for (std::size_t i = before; i < desk.line.frames.size(); ++i) {
      EXPECT_EQ(desk.line.frames[i].text, first) << outer.name;
    }
  }
}

TEST_F(ProgramTest, the_process_can_end_at_any_moment_of_any_job) {
  for (const Job& job : jobs) {
    for (const Time after : {0ms, 3ms, 17ms, 29ms, 430ms, 1000ms}) {
      Desk desk;
      desk.start();
      desk.scanner.options.reply_delay = 300ms;
      desk.windows.at(desk.now() + after, [&] { desk.program.cmdExit_Click(); });
      desk.press(job.handler);
      desk.windows.idle(2s);
      EXPECT_TRUE(desk.windows.ended) << job.name;
      EXPECT_FALSE(desk.line.is_open()) << job.name;
    }
  }
  windows.at(1s, [&] { program.cmdExit_Click(); });
  scanner.faults.silent = simulator::always;
  start();
  EXPECT_TRUE(windows.ended);
  EXPECT_EQ(now(), 1s);
  EXPECT_FALSE(form1().Visible) << "the window had not come up yet";
}

TEST_F(ProgramTest, the_web_button_wants_an_open_port_and_an_address) {
  start();
  press(&Program::cmdWeb_Click);
  press(&Program::cmdReceive_Click);
  press(&Program::cmdWeb_Click);
  EXPECT_EQ(buttons(), "SRFW");
  line.close();
  press(&Program::cmdWeb_Click);
  EXPECT_EQ(windows.addresses, std::vector<std::string>{"www.example.org\r\n"});
}

TEST_F(ProgramTest, the_about_box_stands_in_for_the_rate_line_of_the_scan) {
  start();
  const Form2& form2 = program.forms.form2;
  press(&Program::mnuabout_Click);
  EXPECT_TRUE(form2.Visible && form2.Modal && form2.Command3.Visible);
  EXPECT_FALSE(form2.Label2.Visible || form2.Label3.Visible);
  press(&Program::Command3_Click);
  EXPECT_FALSE(form2.Visible || form2.Modal || form2.Command3.Visible);
  EXPECT_TRUE(form2.Label2.Visible && form2.Label3.Visible);
  EXPECT_EQ(form2.Label3.Caption, "  9600");
}

TEST_F(ProgramTest, a_pick_closes_its_picker_and_goes_into_its_field) {
  press(&Program::cmdCtrlPre_Click);
  press(&Program::cmdCtrlSuf_Click);
  EXPECT_TRUE(form1().Symbol1.Visible && form1().Symbol2.Visible);
  press(&Program::CharList_Click, 2);
  EXPECT_FALSE(form1().Symbol1.Visible);
  press(&Program::CharList2_Click, 127);
  press(&Program::CharList2_Click, 13);
  press(&Program::CharList2_Click, 32);
  EXPECT_EQ(program.setup.text(Field::PREFIX), u"[STX]");
  EXPECT_EQ(program.setup.text(Field::SUFFIX), u"[DEL][CR]");
  EXPECT_EQ(form1().Text3.SelStart, 9);
  press(&Program::cmdCtrlSuf_Click);
  press(&Program::cmdCtrlSuf_Click);
  EXPECT_FALSE(form1().Symbol2.Visible);
  program.setup.text(Field::RSDELY) = u"1a3";
  press(&Program::Text10_KeyUp);
  EXPECT_EQ(program.setup.text(Field::RSDELY), u"103");
}

}  // namespace
}  // namespace orvex::testing
