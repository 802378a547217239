#include "link/exchange.h"

#include <gtest/gtest.h>

#include <map>

#include "link/frame.h"
#include "testing/virtual/desk.h"

namespace orvex::testing {
namespace {

struct ExchangeTest : ::testing::Test, LinkDesk {
  std::int16_t send(std::string_view tag) { return exchange.Send_Tag(tag); }
};

TEST_F(ExchangeTest, a_frame_is_sent_three_times_at_most_and_ends_at_its_ack_or_a_nak) {
  using simulator::always;
  const struct {
    simulator::Faults faults;
    int result;
    const char* seconds;  ///< of each frame and of the end
    const char* panel2;
  } table[]{{{}, 1, "0 0", "TIME OUT COUNT = 0"},
            {{.refused = 2}, 1, "0 0 0 0", "TIME OUT COUNT = 2"},
            {{.refused = 3}, 0, "0 0 0 0", "TIME OUT COUNT = 2"},
            {{.junk_before_ack = "\x15"}, 0, "0 0 0 0", "TIME OUT COUNT = 2"},
            {{.silent = always}, 0, "0 1 2 3", "TIME OUT COUNT = 2"}};
  for (const auto& row : table) {
    LinkDesk desk;
    desk.scanner.faults = row.faults;
    desk.line.paced = false;
    EXPECT_EQ(desk.exchange.Send_Tag("<SPVOLU=LOW>"), row.result);
    std::string seconds;
    for (const auto& frame : desk.line.frames) seconds += std::to_string(frame.at / 1s) + " ";
    EXPECT_EQ(seconds + std::to_string(desk.now() / 1s), row.seconds);
    EXPECT_FALSE(desk.forms.form1.Timer1.Enabled());
    EXPECT_EQ(desk.forms.form1.sbrStatus.Panels[2], row.panel2);
    EXPECT_LE(desk.windows.pumps, 10) << "a wait stays in its pump";
  }
}

TEST_F(ExchangeTest, a_device_that_talks_without_end_fills_no_more_than_a_reply) {
  constexpr std::size_t most = 32768;
  line.paced = false;
  const std::string talk(32000, '-');
  for (int i = 1; i <= 34; ++i) windows.at(i * 1ms, [&] { line.inject(talk); });
  windows.idle(1s);
  EXPECT_EQ(state.RxAccum.size(), most);
  EXPECT_EQ(send("<SPVOLU=LOW>"), 1);
}

TEST_F(ExchangeTest, a_flood_that_was_cut_short_is_no_reply_and_keeps_no_ack_out) {
  const std::string flood(20000, '-');
  line.paced = false;
  scanner.faults.silent = simulator::always;
  for (const std::string& first : {ACK + flood, flood}) {
    windows.boxes.clear();
    line.frames.clear();
    windows.answers = {{Answer::ok, 100ms}};
    windows.at(now() + 1ms, [&] { windows.MsgBox({.text = "of another window"}); });
    windows.at(now() + 10ms, [&] { line.inject(first); });
    windows.at(now() + 20ms, [&] { line.inject(flood); });
    const bool is_reply = first.front() == ACK;
    if (!is_reply) windows.at(now() + 200ms, [&] { line.inject("\x06\x32.0B\r\n"); });
    EXPECT_EQ(send("<HARDRV:>"), is_reply ? 0 : 1);
    EXPECT_EQ(windows.boxes.size(), is_reply ? 2U : 1U);
    EXPECT_EQ(windows.boxes.back().box.text, is_reply ? "Overflow" : "of another window");
    EXPECT_EQ(line.frames.size(), 1U);
    windows.idle(1s);
  }
}

TEST_F(ExchangeTest, the_ack_wins_over_a_tick_in_the_same_pass) {
  line.paced = false;
  scanner.options.ack_delay = 1s;
  EXPECT_EQ(send("<SPVOLU=LOW>"), 1);
  EXPECT_EQ(line.frames.size(), 1U);
  scanner.options.ack_delay += 1ns;
  send("<SPVOLU=LOW>");
  EXPECT_EQ(line.frames.size(), 3U) << "an ACK behind the tick belongs to the next send";
}

TEST_F(ExchangeTest, a_tick_wins_over_the_line_end_in_the_same_pass) {
  line.paced = false;
  scanner.options.reply_delay = 1500ms;
  EXPECT_EQ(send("<HARDRV:>"), 0);
  EXPECT_EQ(state.ReplyText, "2.0B\r\n");
  EXPECT_EQ(state.TimedOut, 1);
  EXPECT_EQ(forms.form1.labRevision[3].Caption, "");
  EXPECT_FALSE(forms.form1.Timer1.Enabled());
}

TEST_F(ExchangeTest, the_reply_may_take_as_long_as_the_rate_allows) {
  struct {
    const char* settings;
    Time limit;
  } const table[]{{"9600,N,8,1", 1500ms}, {"4800,N,8,1", 1500ms},   {"2400,N,8,1", 2500ms},
                  {"1200,N,8,1", 2500ms}, {"  1200,N,8,1", 2500ms}, {"115200,n,8,1", 1500ms},
                  {"19200,N,8,1", 1500ms}};
  line.paced = false;
  for (const auto& row : table) {
    MSComm1.Settings(row.settings);
    scanner.rate(line.settings.baud);
    scanner.options.reply_delay = row.limit - 1ns;
    EXPECT_EQ(send("<HARDRV:>"), 1) << row.settings;
    scanner.options.reply_delay = row.limit;
    EXPECT_EQ(send("<HARDRV:>"), 0) << row.settings;
    windows.idle(1s);
  }
}

TEST_F(ExchangeTest, a_late_ack_counts_for_the_second_frame_and_its_own_is_forgotten) {
  scanner.faults.late_acks = 2;
  scanner.faults.late_by = 1200ms;
  EXPECT_EQ(send("<SPVOLU=LOW>"), 1);
  EXPECT_EQ(forms.form1.sbrStatus.Panels[2], "TIME OUT COUNT = 1");
  windows.idle(2s);
  EXPECT_EQ(send("<HARDRV:>"), 1);
  EXPECT_EQ(forms.form1.labRevision[3].Caption, " 2.0B\r\n");
}

TEST_F(ExchangeTest, bytes_ahead_of_the_ack_are_dropped_and_those_before_the_frame_as_well) {
  scanner.faults.junk_before_ack = "\xFF\x01<SPVOLU=HIGH>\x04";
  line.inject("\x15\x06old\r\n");
  windows.idle(20ms);
  EXPECT_EQ(send("<HARDRV:>"), 1);
  EXPECT_EQ(state.ReplyText, "2.0B\r\n");
}

TEST_F(ExchangeTest, ack_and_reply_may_come_in_one_piece) {
  line.paced = false;
  scanner.options.ack_delay = scanner.options.reply_delay = 0ms;
  EXPECT_EQ(send("<HARDRV:>"), 1);
  EXPECT_EQ(forms.form1.labRevision[3].Caption, " 2.0B\r\n");
  EXPECT_FALSE(forms.form1.Timer1.Enabled());
}

TEST_F(ExchangeTest, the_reply_ends_at_the_first_line_end_and_the_rest_is_dropped) {
  scanner.faults.other_reply = "one\r\ntwo\r\n";
  EXPECT_EQ(send("<WEBSIT:>"), 1);
  EXPECT_EQ(forms.form1.labWeb.Caption, "one\r\n");
  scanner.faults = {};
  EXPECT_EQ(send("<HARDRV:>"), 1);
  EXPECT_EQ(forms.form1.labRevision[3].Caption, " 2.0B\r\n");
}

TEST_F(ExchangeTest, replies_fill_their_labels_uncut_where_they_are_short) {
  struct {
    const char* tag;
    const char* reply;
    std::string shown;
  } const table[]{{"<APP1RV:>", "3.2\r\n", " 3.2\r\n"},
                  {"<APP1RV:>", "3.21 long\r\n", " 3.21 lo"},
                  {"<APP2RV:>", "1.070000\r\n", " 1.07000"},
                  {"<HARDRV:>", "\r\n", " \r\n"},
                  {"<FINGER:>", "OX-41000X\r\n", " OX-41000"},
                  {"<FINGER:>", "OX\r\n", " OX\r\n"},
                  {"<WEBSIT:>", "www.a-long-address.example\r\n", "www.a-long-addres"},
                  {"<WEBSIT:>", "www.x.example\r\n", "www.x.example\r\n"},
                  {"<WEBSIT:>", "www.16letters.ex\r\n", "www.16letters.ex\r"},
                  {"<SERIAL:>", "000000000000000000004711\r\n", "000000000000000000004711\r\n"}};
  Form1& form1 = forms.form1;
  const std::map<std::string, const Label*> labels{
      {"<APP1RV:>", &form1.labRevision[1]}, {"<APP2RV:>", &form1.labRevision[2]},
      {"<HARDRV:>", &form1.labRevision[3]}, {"<FINGER:>", &form1.labRevision[4]},
      {"<WEBSIT:>", &form1.labWeb},         {"<SERIAL:>", &form1.Label4}};
  for (const auto& row : table) {
    scanner.faults.other_reply = row.reply;
    EXPECT_EQ(send(row.tag), 1) << row.tag;
    EXPECT_EQ(labels.at(row.tag)->Caption, row.shown) << row.tag;
  }
}

TEST_F(ExchangeTest, a_reply_of_more_than_32767_characters_is_a_failure_and_nobody_keeps_it) {
  const auto lines = [](std::size_t size) { return std::string(size - 2, '\n') + "\r\n"; };
  const struct {
    std::string reply;
    bool taken;
    const char* name;
  } table[]{{lines(32767), true, "just enough"},
            {lines(32768), false, "one more"},
            {std::string(1'000'000, '\n'), false, "no end"},
            {lines(1'000'000), false, "a million line ends"}};
  constexpr std::size_t piece = 20'000;  // what the port keeps for its reader
  line.paced = false;
  for (const auto& row : table) {
    SCOPED_TRACE(row.name);
    windows.boxes.clear();
    forms.form1.Label4.Caption = "old";
    scanner.faults.other_reply = row.reply.substr(0, piece);
    Time at = now() + 20ms;
    for (std::size_t i = piece; i < row.reply.size(); i += piece) {
      windows.at(at += 1ms, [&, i] { line.inject(row.reply.substr(i, piece)); });
    }
    EXPECT_EQ(send("<SERIAL:>"), row.taken ? 1 : 0);
    EXPECT_EQ(windows.box_texts(), row.taken ? "" : "[Overflow]");
    EXPECT_EQ(forms.form1.Label4.Caption == row.reply, row.taken);
    EXPECT_LE(state.ReplyText.size(), 32768U);
    windows.idle(1s);
    EXPECT_LE(state.RxAccum.size(), 32768U) << "the rest of the flood";
  }
  scanner.faults = {};
  EXPECT_EQ(send("<SERIAL:>"), 1) << "the next exchange begins afresh";
  EXPECT_EQ(forms.form1.Label4.Caption, "0004711\r\n");
}

TEST_F(ExchangeTest, the_revision_number_is_made_of_characters_one_three_and_four) {
  struct {
    const char* reply;
    int number;
    const char* box;
  } const table[]{{"3.21\r\n", 321, ""},
                  {"3.2\r\n", 32, ""},  // the CR is the fourth character
                  {"4X07b\r\n", 407, ""},
                  {"x.21\r\n", 407, "[Type mismatch]"},
                  {"\r\n", 407, "[Type mismatch]"},
                  {"3.2e9\r\n", 407, "[Type mismatch]"},
                  {"9.e9\r\n", 407, "[Overflow]"}};
  for (const auto& row : table) {
    windows.boxes.clear();
    scanner.faults.other_reply = row.reply;
    EXPECT_EQ(send("<APP1RV:>"), *row.box == '\0' ? 1 : 0) << row.reply;
    EXPECT_EQ(state.App1RevNumber, row.number) << row.reply;
    EXPECT_EQ(windows.box_texts(), row.box) << row.reply;
  }
}

TEST_F(ExchangeTest, a_port_that_fails_shows_one_box_and_gives_0_at_once) {
  scanner.faults.reply_without_end = true;
  windows.at(700ms, [&] { line.unplug(); });
  for (std::size_t boxes = 1; boxes <= 2; ++boxes) {
    EXPECT_EQ(send("<HARDRV:>"), 0);
    EXPECT_EQ(now(), 700ms) << "it is lost in the wait for a reply, and then closed";
    ASSERT_EQ(windows.boxes.size(), boxes);
    const MessageBox& box = windows.boxes.back().box;
    EXPECT_EQ(box.text, "The port is not open");
    EXPECT_EQ(box.icon, Icon::exclamation);
    EXPECT_EQ(box.buttons, Buttons::ok);
    EXPECT_EQ(box.title, "Orvex1");
  }
}

}  // namespace
}  // namespace orvex::testing
