#include "setup/setup_jobs.h"

#include <gtest/gtest.h>

#include "testing/virtual/desk.h"

namespace orvex::testing {
namespace {

struct SetupJobsTest : ::testing::Test, Desk {
  SetupJobsTest() {
    start();
    line.frames.clear();
  }
};

TEST_F(SetupJobsTest, a_receive_fills_the_tabs_and_the_labels) {
  scanner.parameters.apply("<SPVOLU=LOW><PREFIX=[STX]:><RSDELY=7><RSCTSE=1>");
  press(&Program::cmdReceive_Click);
  EXPECT_EQ(line.texts(), "<SETPAR:><APP1RV:><APP2RV:><HARDRV:><FINGER:><WEBSIT:><SERIAL:>");
  EXPECT_EQ(program.setup.value(Field::SPVOLU), "LOW");
  EXPECT_EQ(program.setup.value(Field::RSCTSE), "1");
  EXPECT_EQ(program.setup.text(Field::PREFIX), u"[STX]:");
  EXPECT_EQ(program.setup.text(Field::RSDELY), u"7");
  EXPECT_EQ(form1().labRevision[1].Caption, " 3.22\r\n");
  EXPECT_EQ(form1().labRevision[2].Caption, " 1.07\r\n");
  EXPECT_EQ(form1().labRevision[3].Caption, " 2.0B\r\n");
  EXPECT_EQ(form1().labRevision[4].Caption, " OX-4100\r");
  EXPECT_EQ(form1().labWeb.Caption, "www.example.org\r\n");
  EXPECT_EQ(form1().Label4.Caption, "0004711\r\n");
  EXPECT_EQ(panel(2), "");
  EXPECT_EQ(buttons(), "SRFW");
}

TEST_F(SetupJobsTest, each_failing_query_names_itself_and_keeps_what_came_before) {
  // Labels: the three revisions, model, web address, serial number; "n" is new, "o" is old.
  const struct {
    const char* tag;
    const char* panel2;
    const char* labels;
  } table[]{{"<SETPAR:>", "Error in Receiving", "oooooo"},
            {"<APP1RV:>", "Error in App1 Rev", "   ooo"},
            {"<APP2RV:>", "Error in App2 Rev", "n  ooo"},
            {"<HARDRV:>", "Error in Hardware Rev", "nn ooo"},
            {"<FINGER:>", "Error in Model Rev", "nnnooo"},
            {"<WEBSIT:>", "Error in Web information", "nnnnoo"},
            {"<SERIAL:>", "Error in Serial Number", "nnnnno"}};
  for (const auto& row : table) {
    Label* labels[]{&form1().labRevision[1], &form1().labRevision[2], &form1().labRevision[3],
                    &form1().labRevision[4], &form1().labWeb,         &form1().Label4};
    for (Label* label : labels) label->Caption = "old";
    scanner.faults = {.only = row.tag, .refused = 3};
    press(&Program::cmdReceive_Click);
    std::string shown;
    for (const Label* label : labels) {
      shown += label->Caption.empty() ? ' ' : label->Caption == "old" ? 'o' : 'n';
    }
    EXPECT_EQ(shown, row.labels) << row.tag;
    EXPECT_EQ(panel(2), row.panel2);
    EXPECT_EQ(buttons(), "SRFW");
  }
  EXPECT_EQ(windows.box_texts(), "");
}

TEST_F(SetupJobsTest, scanners_below_322_are_not_asked_for_their_serial_number) {
  scanner.options.identity.application1 = "3.21";
  press(&Program::cmdReceive_Click);
  EXPECT_EQ(form1().Label4.Caption, "NOT SUPPORTED");
  EXPECT_EQ(line.texts().find("<SERIAL:>"), std::string::npos);
  scanner.options.identity.application1 = "3.22";
  press(&Program::cmdReceive_Click);
  EXPECT_EQ(form1().Label4.Caption, "0004711\r\n");
}

TEST_F(SetupJobsTest, a_send_is_one_frame_and_moves_the_port_behind_its_ack) {
  for (const auto& [field, choice] : {std::pair{Field::RSBAUD, 7U},
                                      {Field::RSPRTY, 2U},
                                      {Field::RSBITS, 1U},
                                      {Field::RSSTOP, 1U}}) {
    program.setup.choose(field, choice);
  }
  program.setup.text(Field::RSDELY) = u"7";
  program.setup.text(Field::SUFFIX) = u"[CR]:";
  windows.at(now() + 50ms, [&] { program.setup.choose(Field::SPVOLU, 0); });
  press(&Program::cmdSend_Click);
  ASSERT_EQ(line.frames.size(), 1U);
  EXPECT_EQ(line.frames[0].baud, 9600);
  EXPECT_EQ(line.settings, (LineSettings{115200, Parity::even, 7, 2}));
  EXPECT_EQ(panel(1), "Settings: 115200,e,7,2  Com Port: 1");
  EXPECT_EQ(panel(2), "");
  EXPECT_EQ(scanner.parameters["RSDELY"], "007");
  EXPECT_EQ(scanner.parameters["SUFFIX"], "[CR]:");
  EXPECT_EQ(scanner.parameters["SPVOLU"], "MEDIUM") << "the frame was fixed at the click";
  EXPECT_EQ(program.setup.text(Field::RSDELY), u"7");
  EXPECT_EQ(line.opens, 1);
  press(&Program::cmdReceive_Click);
  EXPECT_EQ(panel(2), "");
  for (const auto& [parity, letter] : {std::pair{0U, 'n'}, {1U, 'o'}}) {
    program.setup.choose(Field::RSPRTY, parity);
    press(&Program::cmdSend_Click);
    EXPECT_EQ(panel(1), std::string("Settings: 115200,") + letter + ",7,2  Com Port: 1");
  }
}

TEST_F(SetupJobsTest, a_failed_send_leaves_port_and_setup) {
  program.setup.choose(Field::RSBAUD, 7);
  scanner.faults.refused = 3;
  press(&Program::cmdSend_Click);
  EXPECT_EQ(panel(1), "Settings: 9600,N,8,1  Com Port: 1");
  EXPECT_EQ(panel(2), "Error in Sending");
  EXPECT_EQ(line.settings.baud, 9600);
  EXPECT_EQ(program.setup.value(Field::RSBAUD), "115200");
  EXPECT_EQ(buttons(), "SRFW");
}

TEST_F(SetupJobsTest, refused_settings_leave_the_port_where_it_was) {
  line.refuses_settings = true;
  press(&Program::cmdSend_Click);
  EXPECT_EQ(panel(1), "Settings: 9600,N,8,1  Com Port: 1");
  EXPECT_EQ(panel(2), "");
  EXPECT_EQ(buttons(), "SRFW");
}

TEST_F(SetupJobsTest, a_factory_default_goes_out_at_the_old_rate_and_reads_back_at_9600) {
  program.setup.choose(Field::RSBAUD, 7);
  press(&Program::cmdSend_Click);
  program.setup.choose(Field::SPVOLU, 0);
  program.setup.text(Field::PREFIX) = u"unsent";
  line.frames.clear();
  press(&Program::cmdFactory_Click);
  ASSERT_EQ(line.frames.size(), 8U);
  EXPECT_EQ(line.frames[0].text, "<FACDEF=1>");
  EXPECT_EQ(line.frames[0].baud, 115200);
  EXPECT_EQ(line.frames[1].text, "<SETPAR:>");
  EXPECT_EQ(line.frames[1].baud, 9600);
  EXPECT_EQ(panel(1), "Settings: 9600,N,8,1  Com Port: 1");
  EXPECT_EQ(panel(2), "");
  EXPECT_EQ(program.setup.value(Field::SPVOLU), "HIGH");
  EXPECT_EQ(program.setup.text(Field::PREFIX), u"");
}

TEST_F(SetupJobsTest, after_a_factory_default_a_field_without_a_tag_keeps_its_value) {
  program.setup.text(Field::PREFIX) = u"unsent";
  scanner.faults = {.only = "<SETPAR:>", .other_reply = "\x01<SPVOLU=OFF>\x04\r\n"};
  press(&Program::cmdFactory_Click);
  EXPECT_EQ(program.setup.value(Field::SPVOLU), "OFF");
  EXPECT_EQ(program.setup.text(Field::PREFIX), u"unsent");
}

}  // namespace
}  // namespace orvex::testing
