// The user leaves a load, or the tool, in the middle of it.
#include "upgrade/upload_desk.h"

namespace orvex::testing {
namespace {

TEST_F(UpgradeTest, a_cancel_in_any_phase_closes_the_window_and_leaves_a_link_that_works) {
  const struct {
    const char* phase;
    Time at;           ///< behind the click on the menu
    const char* slow;  ///< tag that is answered late, to hold the load there
    bool fast;
    const char* wire;
    bool mark_turned = false;  ///< before the cancel
    bool closed = false;       ///< by the window's own control
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
      {"transfer, closed", 700ms, "none", false, "<APP1RV:><A1CODE=Z>", false, true},
      {"transfer, fast, closed", 300ms, "none", true, "<APP1RV:><RSBAUD=115200><A1CODE=Z>", false,
       true},
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
      row.closed ? desk.program.Form3_Close() : desk.program.Form3_Command1_Click();
    });
    desk.press(&Program::mnuload_Click, load_item);
    desk.windows.idle(20s);
    EXPECT_FALSE(desk.program.forms.form3.Visible);
    EXPECT_EQ(desk.windows.box_texts(), question + (row.closed ? "" : cancel_question));
    EXPECT_EQ(desk.line.texts(), row.wire);
    EXPECT_EQ(desk.line.settings.baud, row.fast && (row.mark_turned || row.closed) ? 115200 : 9600);
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
  windows.answers = {{Answer::yes}};
  windows.at(now() + 6s, [&] { program.Form3_Command1_Click(); });
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

TEST_F(UpgradeTest, an_exit_gives_the_cancel_its_time_while_the_mouse_moves_and_no_more) {
  for (const auto leave : {&Program::mnuexit_Click, &Program::Form_Unload}) {
    for (const bool stands : {false, true}) {
      Desk desk;
      desk.scanner.rate(1200);
      desk.start();
      desk.load(random_image(20000, 1), false);
      const Time moment = desk.now() + 2s;
      desk.windows.at(moment, [&] {
        desk.line.stands = stands;
        for (Time at = moment; !stands && at < moment + 200ms; at += 1ms)
          desk.windows.at(at, [] {});
        (desk.program.*leave)();
      });
      desk.windows.idle(3s);
      EXPECT_TRUE(desk.windows.ended);
      EXPECT_EQ(desk.loading.receiver.cancelled, !stands) << "the receiver never hears of the exit";
      EXPECT_LE(desk.now(), moment + 150ms);
    }
  }
}

}  // namespace
}  // namespace orvex::testing
