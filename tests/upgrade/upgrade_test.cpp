#include "upgrade/upgrade.h"

#include <gtest/gtest.h>

#include "virtual/desk.h"

namespace orvex::test {
namespace {

constexpr int load_item = 2;
constexpr int fast_item = 5;
const std::string question = "[Do You Want to Update the ROM?]";
const std::string cancel_question = "[Do you want to CANCEL the file transfer?]";
const std::string restart_box =
    "[RESTART the scanner by DISCONNET and RECONNECT the power cable/then press OK to continue]";

struct UpgradeTest : testing::Test, Desk {
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
  Time ended{};
  loading.taken = [&] {
    if (loading.receiver.over) ended = now();
  };
  load(2000);
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
  EXPECT_FALSE(form3().Loaded);
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
}

TEST_F(UpgradeTest, a_cancel_in_any_phase_closes_the_window_and_leaves_a_link_that_works) {
  const struct {
    const char* phase;
    Time at;           ///< behind the click on the menu
    const char* slow;  ///< tag that is answered late, to hold the load there
    bool fast;
    const char* wire;
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
    desk.windows.at(desk.now() + row.at, [&] { desk.program.Form3_Command1_Click(); });
    desk.press(&Program::mnuload_Click, load_item);
    desk.windows.idle(20s);
    EXPECT_FALSE(desk.program.forms.form3.Loaded);
    EXPECT_EQ(desk.windows.box_texts(), question + cancel_question);
    EXPECT_EQ(desk.line.texts(), row.wire);
    EXPECT_EQ(desk.line.settings.baud, 9600);
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
  EXPECT_FALSE(form3().Loaded);
  EXPECT_EQ(panel(1), "Settings: 115200,N,8,1  Com Port: 1");
  EXPECT_EQ(panel(2), "TIME OUT COUNT = 2");
  EXPECT_EQ(line.settings.baud, 9600);
}

TEST_F(UpgradeTest, a_cancel_stays_one_where_the_revision_turns_out_to_be_no_number) {
  scanner.faults = {.only = "<APP1RV:>", .late_acks = 1, .late_by = 900ms};
  windows.files = {folder.write("image.bin", random_image(2000, 1, "four   "))};
  windows.answers = {{Answer::yes, 100ms}, {Answer::yes}};
  windows.at(now() + 500ms, [&] { program.Form3_Command1_Click(); });
  press(&Program::mnuload_Click, load_item);
  EXPECT_EQ(windows.box_texts(), question + cancel_question);
  EXPECT_FALSE(form3().Loaded);
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
    EXPECT_FALSE(form3().Loaded);
    EXPECT_EQ(loading.started, 0);
    windows.idle(10s);
  }
  EXPECT_EQ(line.settings.baud, 115200) << "nothing sets the rate back behind a refused load tag";
}

TEST_F(UpgradeTest, an_image_that_goes_before_the_transfer_ends_in_a_box) {
  windows.answers = {{Answer::yes}};
  windows.at(now() + 10ms, [&] { std::filesystem::remove(folder / "image.bin"); });
  load(500);
  EXPECT_EQ(windows.box_texts(), question + "[Error # 53 File not found]");
  EXPECT_TRUE(form3().Loaded) << "the verdict closes it";
  windows.idle(10s);
  EXPECT_FALSE(form3().Loaded);
  EXPECT_EQ(windows.boxes.size(), 2U);
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
  EXPECT_EQ(windows.dialog_titles.size(), 1U);
  EXPECT_EQ(buttons(), "SRFW");
  windows.idle(20s);
  EXPECT_EQ(scanner.loaded_file().size(), 4000U);
}

TEST_F(UpgradeTest, the_window_close_control_stops_the_transfer) {
  load(2000);
  windows.at(now() + 700ms, [&] { program.Form3_Close(); });
  windows.idle(10s);
  EXPECT_TRUE(loading.receiver.cancelled);
  EXPECT_FALSE(form3().Loaded);
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

struct UploadWindowTest : testing::Test, Bench {
  Upgrade upgrade{link, {}};
};

TEST_F(UploadWindowTest, a_count_never_overshoots_and_none_is_never_complete) {
  ProgressBar& bar = forms.form3.ProgressBar1;
  upgrade.FileProgress(5);
  EXPECT_EQ(bar.Value, 0) << "there is no window to show it";
  forms.form3.Loaded = true;
  bar.Visible = false;
  upgrade.FileProgress(0);
  EXPECT_TRUE(bar.Visible && bar.Max == 1 && bar.Value == 0);
  upgrade.FileProgress(5);
  EXPECT_EQ(bar.Value, 1);
}

TEST_F(UploadWindowTest, one_byte_is_missed_where_a_float_would_take_it_for_all) {
  constexpr std::int32_t all_but_one = 1 << 25;
  MSComm1.FileName(folder.write("image.bin", "x"));
  std::filesystem::resize_file(folder / "image.bin", all_but_one + 1);
  MSComm1.Protocol(5);
  MSComm1.FileSendOn(true);
  forms.form3.Loaded = true;
  const ProgressBar& bar = forms.form3.ProgressBar1;
  upgrade.FileProgress(all_but_one);
  EXPECT_LT(bar.Value, bar.Max);
  upgrade.FileProgress(all_but_one + 1);
  EXPECT_EQ(bar.Value, bar.Max);
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
}  // namespace orvex::test
