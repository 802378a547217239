#include "upgrade/upgrade.h"

#include <gtest/gtest.h>

#include "testing/virtual/desk.h"

namespace orvex::testing {
namespace {

constexpr int load_item = 2;
constexpr int fast_item = 5;
const std::string question = "[Do You Want to Update the ROM?]";
const std::string cancel_question = "[Do you want to CANCEL the file transfer?]";
const std::string restart_box =
    "[RESTART the scanner by DISCONNET and RECONNECT the power cable/then press OK to continue]";

struct UpgradeTest : ::testing::Test, Desk {
  UpgradeTest() {
    start();
    line.frames.clear();
  }
  void load(std::size_t size, bool fast = false) { Desk::load(random_image(size, 1), fast); }
  void cancel_at(Time time) {
    windows.at(time, [&] {
      windows.answers.push_front({Answer::yes});
      program.Form3_Command1_Click();
    });
  }
  Form3& form3() { return program.forms.form3; }
};

TEST_F(UpgradeTest, a_complete_load_ends_in_restart_scan_and_receive) {
  scanner.options.start_up_rate = 4800;
  windows.answers = {{Answer::ok, 3s}};
  windows.box_is_up = [&](const MessageBox& box) {
    EXPECT_EQ(form3().Visible, box.title != "Restart");
    EXPECT_FALSE(form3().Visible && form3().ProgressBar1.Visible);
  };
  Time ended{};
  loading.taken = [&] {
    if (loading.receiver.over) ended = now();
  };
  load(2000);
  const Time started = now();
  EXPECT_EQ(form3().Text1, " 00001234");
  EXPECT_EQ(form3().Text2, " BEEF");
  EXPECT_EQ(form3().Text3, " 4.00   ");
  EXPECT_EQ(form3().Text4, " 01 Jan 2026");
  EXPECT_EQ(line.texts(), "<APP1RV:><A1CODE=Z>");
  EXPECT_EQ(panel(2), "");
  EXPECT_EQ(buttons(), "SRFW");
  windows.idle(20s);
  EXPECT_EQ(scanner.loaded_file(), random_image(2000, 1));
  EXPECT_EQ(windows.box_texts(), question + restart_box);
  EXPECT_EQ(windows.boxes[1].box.icon, Icon::information);
  EXPECT_EQ(windows.boxes[1].box.title, "Restart");
  EXPECT_GE(windows.boxes[1].at - ended, 7s);
  EXPECT_LE(windows.boxes[1].at - ended, 8s);
  EXPECT_EQ((windows.boxes[1].at - started) % 1s, 0s) << "looked at each second, and 7 s later";
  EXPECT_FALSE(form3().Visible);
  EXPECT_EQ(panel(1), "Settings: 4800,N,8,1  Com Port: 1");
  EXPECT_EQ(form1().labRevision[1].Caption, " 4.00   ");
  EXPECT_FALSE(form1().Timer1.Enabled());
}

TEST_F(UpgradeTest, a_search_that_is_given_up_behind_a_load_ends_it_there) {
  windows.answers = {{Answer::ok, 500ms}, {Answer::cancel}};
  loading.taken = [&] { scanner.faults.silent = loading.receiver.over ? -1 : 0; };
  load(500);
  for (int step = 0; step < 2000 && windows.boxes.size() < 3; ++step) windows.idle(10ms);
  ASSERT_EQ(windows.box_texts(), question + restart_box + "[Connection Failed]");
  EXPECT_LE(now() - windows.boxes[2].at, 10ms) << "nothing is asked over a closed port";
  EXPECT_EQ(panel(2), "");
}

TEST_F(UpgradeTest, the_bar_and_the_pictures_follow_the_transfer) {
  load(6000);
  windows.idle(1950ms);
  EXPECT_TRUE(form3().ProgressBar1.Visible);
  EXPECT_EQ(form3().ProgressBar1.Max, 6000);
  EXPECT_EQ(form3().ProgressBar1.Value, 1024);
  EXPECT_EQ(form3().Picture1, 1) << "nineteen ticks over eighteen cells";
  windows.idle(7s);
  EXPECT_EQ(form3().ProgressBar1.Value, 6000);
  press(&Program::Form3_Close);
  scanner.restart();
  load(6000);
  windows.idle(150ms);
  EXPECT_EQ(form3().Picture1, 1) << "each load begins anew";
}

TEST_F(UpgradeTest, a_cancel_in_any_phase_closes_the_window_and_leaves_a_link_that_works) {
  const struct {
    const char* phase;
    Time at;           ///< behind the click on the menu
    const char* slow;  ///< tag that is answered late, to hold the load there
    bool fast;
    const char* wire;
    bool mark_turned = false;  ///< before the cancel
  } table[]{
      {"question", 50ms, "none", false, ""},
      {"query", 500ms, "<APP1RV:>", false, "<APP1RV:>"},
      {"query, fast", 500ms, "<APP1RV:>", true, "<APP1RV:>"},
      {"rate", 500ms, "<RSBAUD=115200>", true, "<APP1RV:><RSBAUD=115200><RSBAUD=9600>"},
      {"load tag", 500ms, "<A1CODE", false, "<APP1RV:><A1CODE=Z>"},
      {"load tag, fast", 500ms, "<A1CODE", true,
       // The loader waits for a file and doesn't know the last tag.
       "<APP1RV:><RSBAUD=115200><A1CODE=Z><RSBAUD=9600><RSBAUD=9600><RSBAUD=9600>"},
      {"transfer", 1s, "none", false, "<APP1RV:><A1CODE=Z>"},
      {"transfer, fast", 300ms, "none", true, "<APP1RV:><RSBAUD=115200><A1CODE=Z><RSBAUD=9600>"},
      {"mark put on", 1s, "none", false, "<APP1RV:><A1CODE=Z>", true},
      {"mark taken off", 300ms, "none", true, "<APP1RV:><RSBAUD=115200><A1CODE=Z>", true},
  };
  for (const auto& row : table) {
    SCOPED_TRACE(row.phase);
    Desk desk;
    desk.start();
    desk.line.frames.clear();
    if (row.fast) desk.press(&Program::mnuload_Click, fast_item);
    desk.scanner.faults = {.only = row.slow, .late_acks = 1, .late_by = 900ms};
    desk.windows.files = {desk.folder.write("image.bin", random_image(20000, 1))};
    desk.windows.answers = {{Answer::yes, 100ms}, {Answer::yes}};
    desk.windows.at(desk.now() + row.at, [&] {
      if (row.mark_turned) desk.program.mnuload_Click(fast_item);
      desk.program.Form3_Command1_Click();
    });
    desk.press(&Program::mnuload_Click, load_item);
    desk.windows.idle(20s);
    EXPECT_FALSE(desk.program.forms.form3.Visible);
    EXPECT_EQ(desk.windows.box_texts(), question + cancel_question);
    EXPECT_EQ(desk.line.texts(), row.wire);
    EXPECT_EQ(desk.line.settings.baud, row.fast && row.mark_turned ? 115200 : 9600);
    EXPECT_EQ(desk.loading.receiver.cancelled, desk.loading.started == 1);
    desk.scanner.faults = {};
    desk.scanner.restart();
    desk.windows.answers = {{Answer::cancel}};
    desk.press(&Program::mnuauto_Click);
    desk.press(&Program::cmdReceive_Click);
    EXPECT_EQ(desk.panel(2), "");
  }
}

TEST_F(UpgradeTest, a_cancel_while_all_settles_is_one_all_the_same) {
  scanner.options.restarts_itself = false;  // deaf, so that telling it the old rate takes 3 s
  load(500, true);
  cancel_at(now() + 6s);
  windows.idle(20s);
  EXPECT_EQ(windows.box_texts(), question + cancel_question);
  EXPECT_FALSE(form3().Visible);
  EXPECT_EQ(panel(1), "Settings: 115200,N,8,1  Com Port: 1");
  EXPECT_EQ(panel(2), "TIME OUT COUNT = 2");
  EXPECT_EQ(line.settings.baud, 9600);
}

TEST_F(UpgradeTest, a_load_that_the_user_has_left_asks_nothing_more_and_says_nothing) {
  const struct {
    const char* name;
    const char* slow;     ///< tag in whose exchange the user leaves
    const char* version;  ///< of the image
  } table[]{{"a revision that is no number", "<APP1RV:>", "four   "},
            {"an older revision", "<APP1RV:>", "1.00   "},
            {"a port that refuses the rate", "<RSBAUD=115200>", "4.00   "}};
  for (const auto& row : table) {
    for (const auto leave : {&Program::Form3_Command1_Click, &Program::Form3_Close}) {
      SCOPED_TRACE(row.name);
      Desk desk;
      desk.start();
      desk.press(&Program::mnuload_Click, fast_item);
      desk.scanner.faults = {.only = row.slow, .late_acks = 1, .late_by = 900ms};
      desk.windows.files = {desk.folder.write("image.bin", random_image(2000, 1, row.version))};
      desk.windows.answers = {{Answer::yes, 100ms}, {Answer::yes}};
      desk.windows.at(desk.now() + 500ms, [&] {
        desk.line.refuses_settings = true;
        (desk.program.*leave)();
      });
      desk.press(&Program::mnuload_Click, load_item);
      EXPECT_EQ(desk.windows.box_texts(),
                question + (leave == &Program::Form3_Close ? "" : cancel_question));
      EXPECT_FALSE(desk.program.forms.form3.Visible);
      EXPECT_EQ(desk.loading.started, 0);
    }
  }
}

TEST_F(UpgradeTest, the_scan_behind_a_load_takes_an_open_about_box_for_itself) {
  windows.answers = {{Answer::ok, 500ms}};
  load(500);
  press(&Program::mnuabout_Click);
  windows.idle(9s);
  const Form2& form2 = program.forms.form2;
  EXPECT_FALSE(form2.Visible || form2.Modal || form2.Command3.Visible);
  EXPECT_TRUE(form2.Label2.Visible && form2.Label3.Visible);
}

TEST_F(UpgradeTest, no_to_the_cancel_changes_nothing_and_the_verdict_takes_the_question_down) {
  load(500);
  windows.answers = {{Answer::no, 500ms}, {Answer::yes, 60s}};
  windows.at(now() + 100ms, [&] { program.Form3_Command1_Click(); });
  windows.at(now() + 3s, [&] { program.Form3_Command1_Click(); });
  windows.idle(20s);
  EXPECT_EQ(windows.box_texts(), question + cancel_question + cancel_question + restart_box);
  EXPECT_EQ(windows.boxes[2].answer, Answer::no);
  for (const ShownBox& shown : windows.boxes) {
    EXPECT_EQ(shown.box.refuses_by_default, shown.box.title == "Abort file transfer...");
  }
  EXPECT_EQ(form1().labRevision[1].Caption, " 4.00   ");
}

TEST_F(UpgradeTest, ends_before_the_transfer_close_the_window_and_say_no_more_than_they_must) {
  const struct {
    const char* name;
    const char* image_name;
    std::string version;
    const char* fails;  ///< tag that the scanner refuses
    Answer answer;
    std::string boxes;
    const char* wire;
  } table[]{
      {"no", "fw", "4.00", "", Answer::no, question, ""},
      {"query", "fw", "4.00", "<APP1RV", Answer::yes, question, "<APP1RV:><APP1RV:><APP1RV:>"},
      {"rate", "fw", "4.00", "<RSBAUD", Answer::yes, question,
       "<APP1RV:><RSBAUD=115200><RSBAUD=115200><RSBAUD=115200>"},
      {"load tag", "fw", "4.00", "<A1CODE", Answer::yes, question,
       "<APP1RV:><RSBAUD=115200><A1CODE=Z><A1CODE=Z><A1CODE=Z>"},
      {"no number", "fw", "four", "", Answer::yes, question + "[Error # 13 Type mismatch]",
       "<APP1RV:>"},
      {"too short", "short", "", "", Answer::yes, "", ""},
      {"missing", "missing", "", "", Answer::yes, "[Error # 53 File not found]", ""},
      {"no folder", "fw/x", "", "", Answer::yes, "[Cannot open the drive]", ""},
      {"missing folder", "away/fw", "", "", Answer::yes, "[Cannot open the drive]", ""},
      {"folder", ".", "", "", Answer::yes, "[Error # 75 Path/File access error]", ""},
      {"cancelled", "", "", "", Answer::yes, "", ""},
  };
  press(&Program::mnuload_Click, fast_item);
  folder.write("short", std::string(108, '1'));
  for (const auto& row : table) {
    SCOPED_TRACE(row.name);
    windows.boxes.clear();
    line.frames.clear();
    scanner.faults = {.only = row.fails, .refused = *row.fails != '\0' ? 3 : 0};
    if (!row.version.empty()) folder.write("fw", random_image(300, 1, row.version + "   "));
    windows.files = {*row.image_name != '\0' ? std::optional(folder / row.image_name)
                                             : std::nullopt};
    windows.answers = {{row.answer}};
    press(&Program::mnuload_Click, load_item);
    EXPECT_EQ(windows.box_texts(), row.boxes);
    EXPECT_EQ(line.texts(), row.wire);
    EXPECT_FALSE(form3().Visible);
    EXPECT_EQ(loading.started, 0);
    windows.idle(10s);
  }
  EXPECT_EQ(line.settings.baud, 115200) << "nothing sets the rate back after a refused load tag";
}

TEST_F(UpgradeTest, a_transfer_that_cannot_begin_shows_the_box_of_its_error) {
  const struct {
    int number;  ///< 0 if the image goes before the transfer
    const char* box;
    Icon icon;
    const char* title;
  } table[]{
      {0, "[Error # 53 File not found]", Icon::critical, "Error"},
      {55, "[Cannot copy an open file. Close it and try again.]", Icon::information, "Note"},
      {71, "[Cannot open the drive]", Icon::information, "Note"},
      {76, "[Cannot open the drive]", Icon::information, "Note"},
      {70, "[Error # 70 none]", Icon::critical, "Error"},
  };
  for (const auto& row : table) {
    SCOPED_TRACE(row.number);
    Desk desk;
    desk.start();
    if (row.number != 0) desk.loading.refusal = {row.number, "none"};
    if (row.number == 0) {
      desk.windows.at(desk.now() + 10ms,
                      [&] { std::filesystem::remove(desk.folder / "image.bin"); });
    }
    desk.load(random_image(500, 1), false);
    EXPECT_EQ(desk.windows.box_texts(), question + row.box);
    EXPECT_EQ(desk.windows.boxes.back().box.icon, row.icon);
    EXPECT_EQ(desk.windows.boxes.back().box.title, row.title);
    EXPECT_TRUE(desk.program.forms.form3.Visible) << "the verdict closes it";
    desk.windows.idle(10s);
    EXPECT_FALSE(desk.program.forms.form3.Visible);
    EXPECT_EQ(desk.windows.boxes.size(), 2U);
  }
}

TEST_F(UpgradeTest, nothing_else_starts_while_a_load_runs) {
  load(4000);
  const auto before = line.frames.size();
  for (const auto handler :
       {&Program::cmdSend_Click, &Program::cmdReceive_Click, &Program::cmdFactory_Click,
        &Program::mnuauto_Click, &Program::Form4_Command1_Click}) {
    press(handler);
  }
  press(&Program::mnuload_Click, load_item);
  EXPECT_EQ(line.frames.size(), before);
  EXPECT_EQ(windows.dialogs,
            std::vector<std::string>{"Select a BIN file|All files|BIN Files (*.bin)"});
  EXPECT_EQ(buttons(), "SRFW");
  windows.idle(20s);
  EXPECT_EQ(scanner.loaded_file().size(), 4000U);
}

TEST_F(UpgradeTest, the_window_close_control_stops_the_transfer) {
  load(2000);
  windows.at(now() + 700ms, [&] { program.Form3_Close(); });
  windows.idle(10s);
  EXPECT_TRUE(loading.receiver.cancelled);
  EXPECT_FALSE(form3().Visible);
  EXPECT_EQ(windows.box_texts(), question);
  press(&Program::cmdReceive_Click);
  EXPECT_EQ(panel(2), "");
}

TEST_F(UpgradeTest, the_process_can_end_at_any_moment_of_a_load) {
  for (const bool menu : {false, true}) {
    for (Time after = 0ms; after < 14s; after += 470ms) {
      Desk desk;
      desk.start();
      desk.windows.files = {desk.folder.write("image.bin", random_image(2000, 1))};
      desk.windows.answers = {{Answer::yes, 400ms}, {Answer::ok, 2s}};
      const Time moment = desk.now() + after;
      desk.windows.at(moment,
                      [&] { menu ? desk.program.mnuexit_Click() : desk.program.Form_Unload(); });
      desk.press(&Program::mnuload_Click, load_item);
      desk.windows.idle(after + 1s);
      EXPECT_TRUE(desk.windows.ended);
      EXPECT_LE(desk.now(), moment + 150ms) << "the cancel sequence has no more time";
      EXPECT_EQ(desk.line.is_open(), menu && desk.line.opens > 0) << after.count();
    }
  }
}

TEST_F(UpgradeTest, an_exit_gives_the_cancel_its_time_while_the_mouse_moves) {
  for (const auto leave : {&Program::mnuexit_Click, &Program::Form_Unload}) {
    Desk desk;
    desk.scanner.rate(1200);
    desk.start();
    desk.load(random_image(20000, 1), false);
    const Time moment = desk.now() + 2s;
    desk.windows.at(moment, [&] {
      for (Time at = moment; at < moment + 200ms; at += 1ms) desk.windows.at(at, [] {});
      (desk.program.*leave)();
    });
    desk.windows.idle(3s);
    EXPECT_TRUE(desk.windows.ended);
    EXPECT_TRUE(desk.loading.receiver.cancelled) << "the receiver never hears of the exit";
    EXPECT_LE(desk.now(), moment + 150ms);
  }
}

struct UploadWindowTest : ::testing::Test, LinkDesk {
  Upgrade upgrade{link, {}};
};

TEST_F(UploadWindowTest, a_count_never_overshoots_and_none_is_never_complete) {
  ProgressBar& bar = forms.form3.ProgressBar1;
  upgrade.FileProgress(5);
  EXPECT_EQ(bar.Value, 0) << "there is no window to show it";
  forms.form3.Visible = true;
  bar.Visible = false;
  upgrade.FileProgress(0);
  EXPECT_TRUE(bar.Visible && bar.Max == 1 && bar.Value == 0);
  upgrade.FileProgress(5);
  EXPECT_EQ(bar.Value, 1);
}

/// An engine that stands where the test sets it.
class StillEngine final : public FileEngine {
 public:
  StillEngine(const std::uint64_t& done, std::uint64_t total) : done_(done), total_(total) {}
  void receive(std::string_view /*bytes*/, Time /*now*/) override {}
  void tick(Time /*now*/) override {}
  bool take_discard() override { return false; }
  std::string transmit(std::size_t /*room*/, Time /*now*/) override { return {}; }
  std::size_t most_unsent() const override { return 1; }
  std::optional<Time> wake() const override { return std::nullopt; }
  void cancel(Time /*now*/) override {}
  State state() const override { return State::running; }
  bool finished() const override { return false; }
  std::uint64_t progress() const override { return done_; }
  std::uint64_t total() const override { return total_; }
  std::string_view reason() const override { return {}; }

 private:
  const std::uint64_t& done_;
  std::uint64_t total_;
};

TEST_F(UploadWindowTest, the_bar_is_full_only_when_all_is_done_up_to_4_gib) {
  // The numbers of the bar are floats, those of the serial control have 32 bits with a sign.
  for (const std::uint64_t total : {0x2000001U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    std::uint64_t done = 0;
    ScannerLink still(windows, line,
                      [&](const std::filesystem::path&, int, Time) {
                        return std::make_unique<StillEngine>(done, total);
                      },
                      {});
    Upgrade watched(still, {});
    still.MSComm1.FileProgress = [&](std::int32_t count) { watched.FileProgress(count); };
    still.MSComm1.Protocol(5);
    still.MSComm1.FileSendOn(true);
    still.forms.form3.Visible = true;
    const ProgressBar& bar = still.forms.form3.ProgressBar1;
    for (const std::uint64_t part : {total / 2, total - 1}) {
      done = part;
      still.MSComm1.run();
      EXPECT_NEAR(bar.Value / bar.Max, static_cast<double>(part) / static_cast<double>(total),
                  1e-5);
      EXPECT_LT(bar.Value, bar.Max) << total;
    }
    done = total;
    still.MSComm1.run();
    EXPECT_EQ(bar.Value, bar.Max) << total;
  }
}

TEST_F(UploadWindowTest, the_data_events_are_off_while_it_stands_and_come_back) {
  MSComm1.RThreshold(3);
  MSComm1.SThreshold(4);
  windows.files = {folder.write("image.bin", random_image(200, 1))};
  windows.answers = {{Answer::no, 1s}};
  windows.at(500ms, [&] { EXPECT_EQ(MSComm1.RThreshold() + MSComm1.SThreshold(), 0); });
  upgrade.mnuload_Click(load_item);
  EXPECT_EQ(MSComm1.RThreshold(), 3);
  EXPECT_EQ(MSComm1.SThreshold(), 4);
}

}  // namespace
}  // namespace orvex::testing
