#include "setupfiles/setup_files.h"

#include <gtest/gtest.h>

#include "parameter_table.h"
#include "setup/apply.h"
#include "setupfiles/symbols.h"
#include "testing/virtual/temporary_folder.h"
#include "testing/virtual/virtual_windows.h"

namespace orvex::testing {
namespace {

struct SetupFilesTest : ::testing::Test {
  void save(const std::filesystem::path& path) {
    windows.files.emplace_back(path);
    mnusave_Click(windows, setup);
  }
  void open(const std::filesystem::path& path) {
    windows.files.emplace_back(path);
    mnuopen_Click(windows, setup);
  }

  VirtualWindows windows;
  TemporaryFolder folder;
  ScannerSetup setup;
};

TEST_F(SetupFilesTest, a_file_holds_all_tags_but_one_in_their_order) {
  save(folder / "any name");
  std::string text;
  for (const ListedParameter& row : parameter_table()) {
    if (row.tag("0") != "<RSCTSE=0>") text += "\x01" + row.tag(row.initial) + "\x04";
  }
  EXPECT_EQ(content(folder / "any name"), text);
  open(folder / "any name");
  const std::string dialog = "Select a TXT file|All files|Text Files (*.txt)";
  EXPECT_EQ(windows.dialogs, (std::vector{dialog, dialog}));
}

TEST_F(SetupFilesTest, a_setup_comes_back_from_its_file_but_for_the_handshake) {
  for (const auto& row : parameters()) {
    if (!row.is_text()) setup.choose(row.field, row.choices.size() - 1 - row.initial);
  }
  setup.text(Field::RSDELY) = u"007";
  for (char16_t c = 0x20; c <= 0xFF; ++c) {
    if (c < 0x7F || c >= 0xA0) setup.text(Field::PREFIX) += c;  // what a keyboard gives
  }
  setup.text(Field::SUFFIX) = u"[STX]:>";
  const ScannerSetup saved = setup;
  save(folder / "file");
  setup = ScannerSetup();
  setup.choose(Field::RSCTSE, saved.choice(Field::RSCTSE));
  open(folder / "file");
  EXPECT_EQ(setup, saved);
  setup.choose(Field::RSCTSE, 0);
  open(folder / "file");
  EXPECT_EQ(setup.choice(Field::RSCTSE), 0U);
}

TEST_F(SetupFilesTest, the_text_is_fixed_before_the_dialog_appears) {
  windows.file_dialog_time = 1s;
  windows.at(500ms, [&] { setup.choose(Field::SPVOLU, 0); });
  save(folder / "file");
  EXPECT_NE(content(folder / "file").find("<SPVOLU=MEDIUM>"), std::string::npos);
}

TEST_F(SetupFilesTest, a_file_that_shrinks_while_it_is_read_ends_where_it_ends) {
  const auto path = folder.write(
      "file", setup_file_text(setup) + std::string(3 << 20, ' ') + "\x01<CD39EN=1>\x04");
  windows.at(0ms, [&] { std::filesystem::resize_file(path, 2 << 20); });
  setup.choose(Field::SPVOLU, 0);
  open(path);
  EXPECT_EQ(setup, ScannerSetup()) << "the window has its turns";
}

TEST_F(SetupFilesTest, a_cancelled_dialog_shows_nothing_and_a_failure_one_box) {
  windows.files = {std::nullopt, std::nullopt};
  mnusave_Click(windows, setup);
  mnuopen_Click(windows, setup);
  EXPECT_EQ(windows.box_texts(), "");
  folder.write("blocker", "x");
  const ScannerSetup before = setup;
  save(folder.path());
  save(folder / "missing/file");
  open(folder / "missing");
  open(folder / "blocker/file");
  open("/dev/null");
  EXPECT_EQ(windows.box_texts(),
            "[Error # 75 Path/File access error][Error # 76 Path not found]"
            "[Error # 53 File not found][Error # 76 Path not found]"
            "[Error # 75 Path/File access error]");
  for (const auto& shown : windows.boxes) {
    EXPECT_EQ(shown.box.icon, Icon::critical);
    EXPECT_EQ(shown.box.title, "Error");
    EXPECT_EQ(shown.box.buttons, Buttons::ok);
  }
  EXPECT_EQ(setup, before);
}

TEST(Symbols, replace_the_selection_and_leave_the_caret_behind_them) {
  const struct {
    const char16_t* text;
    int start;
    int length;
    const char* name;
    const char16_t* result;
    int caret;
  } table[]{{u"", 0, 0, "STX", u"[STX]", 5},     {u"AB", 1, 0, "CR", u"A[CR]B", 5},
            {u"ABCD", 1, 2, "CR", u"A[CR]D", 5}, {u"AB", 2, 0, "DEL", u"AB[DEL]", 7},
            {u"AB", 0, 2, "NUL", u"[NUL]", 5},   {u"AB", 9, 9, "FF", u"AB[FF]", 6},
            {u"AB", -1, 1, "FF", u"[FF]B", 4}};
  for (const auto& row : table) {
    std::u16string text = row.text;
    Caret box{row.start, row.length};
    Insert_Symbol(text, box, row.name);
    EXPECT_EQ(text, row.result);
    EXPECT_EQ(box.SelStart, row.caret);
    EXPECT_EQ(box.SelLength, 0);
    EXPECT_TRUE(box.focus_wanted);
  }
}

TEST(Symbols, stand_under_their_codes) {
  std::string names;
  for (const auto& symbol : control_symbols()) {
    names += std::to_string(symbol.index) + std::string(symbol.name) + " ";
  }
  EXPECT_EQ(names,
            "0NUL 1SOH 2STX 3ETX 4EOT 5ENQ 6ACK 7BEL 8BS 9HT 10LF 11VT 12FF 13CR 14SO 15SI 16DLE "
            "17DC1 18DC2 19DC3 20DC4 21NAK 22SYN 23ETB 24CAN 25EM 26SUB 27ESC 28FS 29GS 30RS 31US "
            "127DEL ");
}

}  // namespace
}  // namespace orvex::testing
