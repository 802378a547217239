#include "upgrade/guards.h"

#include <gtest/gtest.h>

#include "testing/virtual/desk.h"
#include "upgrade/image_header.h"

namespace orvex::testing {
namespace {

TEST(ImageHeader, is_cut_by_position_out_of_a_file_with_a_body) {
  const TemporaryFolder folder;
  std::string bytes;
  for (int i = 0; i < 109; ++i) bytes += static_cast<char>(i);
  const auto header = Read_Image_Header(folder.write("109", bytes));
  ASSERT_TRUE(header);
  EXPECT_EQ(header->CodeSize, bytes.substr(48, 8));
  EXPECT_EQ(header->CodeCrc, bytes.substr(64, 4));
  EXPECT_EQ(header->CodeVersion, bytes.substr(80, 7));
  EXPECT_EQ(header->CodeDate, bytes.substr(96, 11));
  EXPECT_FALSE(Read_Image_Header(folder.write("108", bytes.substr(1))));
  EXPECT_FALSE(Read_Image_Header(folder.write("0", "")));
  EXPECT_THROW(Read_Image_Header(folder / "missing"), RunTimeError);
  EXPECT_THROW(Read_Image_Header(folder.path()), RunTimeError);
}

struct GuardsTest : ::testing::Test, LinkDesk {
  GuardsTest() { forms.form3.Visible = true; }
};

TEST_F(GuardsTest, revisions_are_compared_as_the_numbers_of_all_their_digits) {
  constexpr int no_number = -1;
  const struct {
    const char* scanner;
    const char* image;
    std::optional<Answer> answer;  ///< to the warning, if one is wanted
    int result;
  } table[]{{"3.21", "3.21   ", std::nullopt, 1}, {"3.21", "3.22   ", std::nullopt, 1},
            {"3.21", "3.20   ", Answer::no, 0},   {"3.21", "3.20   ", Answer::yes, 1},
            {"3.21", "4.0    ", Answer::no, 0},   {"3.9", "3.10   ", std::nullopt, 1},
            {"3.21", "  3.21 ", std::nullopt, 1}, {"3.100", "3.9    ", Answer::no, 0},
            {"3.21", "3.2a   ", {}, no_number},   {"3.21", "       ", {}, no_number},
            {"3.21", "3.2\0\0\0", {}, no_number}, {"3.21a", "3.21   ", {}, no_number}};
  for (const auto& row : table) {
    windows.boxes.clear();
    scanner.options.identity.application1 = row.scanner;
    forms.form3.Text3 = " " + std::string(row.image, 7);
    if (row.answer) windows.answers = {{*row.answer}};
    int result = no_number;
    try {
      result = Check_Rev(link);
    } catch (const RunTimeError& error) {
      EXPECT_EQ(error.number, error_number::type_mismatch);
    }
    EXPECT_EQ(result, row.result) << row.scanner << " against " << row.image;
    ASSERT_EQ(windows.boxes.size(), row.answer ? 1U : 0U) << row.image;
    if (!row.answer) continue;
    EXPECT_EQ(windows.box_texts(),
              "[You are about to program the scanner with a OLDER revision/"
              "Do you want to continue ?]");
    EXPECT_EQ(windows.boxes[0].box.title, "WARNING");
    EXPECT_EQ(windows.boxes[0].box.buttons, Buttons::yes_no);
  }
}

TEST_F(GuardsTest, a_fast_load_keeps_all_of_the_settings_but_the_rate) {
  undo_fast_load(link);
  EXPECT_EQ(line.texts(), "") << "nothing to go back to yet";
  for (const char* settings : {"9600,N,8,1", "  9600,o,8,1", "1200,e,7,2", "115200,n,8,1"}) {
    MSComm1.Settings(settings);
    line.match_scanner();
    const std::string before = MSComm1.Settings();
    LineSettings fast = line.settings;
    forms.form1.mnuload[5].Checked = false;
    EXPECT_EQ(Fast_Load(link), 1);
    EXPECT_EQ(MSComm1.Settings(), before);
    forms.form1.mnuload[5].Checked = true;
    line.frames.clear();
    EXPECT_EQ(Fast_Load(link), 1);
    EXPECT_EQ(line.texts(), "<RSBAUD=115200>");
    fast.baud = 115200;
    EXPECT_EQ(line.settings, fast);
    EXPECT_EQ(scanner.rate(), 115200);
    undo_fast_load(link);
    EXPECT_EQ(MSComm1.Settings(), before);
    EXPECT_EQ(scanner.rate(), line.settings.baud);
  }
}

TEST_F(GuardsTest, a_fast_load_that_is_refused_leaves_the_port_and_saves_its_settings) {
  forms.form1.mnuload[5].Checked = true;
  scanner.faults.refused = 3;
  EXPECT_EQ(Fast_Load(link), 0);
  EXPECT_EQ(MSComm1.Settings(), "9600,N,8,1");
  EXPECT_EQ(state.SavedSettings, "9600,N,8,1");
}

}  // namespace
}  // namespace orvex::testing
