#include <gtest/gtest.h>

#include <QClipboard>
#include <QLineEdit>
#include <QRadioButton>
#include <QTabWidget>
#include <QTest>

#include "demo/pilot.h"
#include "setup/apply.h"

namespace orvex {
namespace {

class Fields : public testing::Test {
 protected:
  Fields() : pilot_({}, false) {
    pilot_.desktop().program.forms.form1.Visible = true;
    draw();
    pilot_.find("Form1")->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(pilot_.find("Form1")));
  }

  void draw() { pilot_.desktop().windows.draw(); }
  QLineEdit* box(const char* name) { return pilot_.find<QLineEdit>(name); }
  ScannerSetup& setup() { return pilot_.desktop().program.setup; }

  Pilot pilot_;
};

TEST_F(Fields, a_received_tag_moves_the_option_button_and_a_click_changes_the_field) {
  for (const Parameter& row : parameters()) {
    for (std::size_t position = 0; position < row.choices.size(); ++position) {
      auto* option =
          pilot_.find<QRadioButton>("Option" + QString::number(row.choices[position].option));
      Apply_Tag(setup(),
                "<" + std::string(row.name) + "=" + std::string(row.choices[position].value) + ">");
      draw();
      EXPECT_TRUE(option->isChecked()) << option->objectName().toStdString();
      const std::size_t other = (position + 1) % row.choices.size();
      pilot_.find<QRadioButton>("Option" + QString::number(row.choices[other].option))->click();
      EXPECT_EQ(setup().choice(row.field), other) << row.name;
    }
  }
}

TEST_F(Fields, the_limit_binds_typing_and_pasting_but_no_received_text) {
  pilot_.type("Text2", QString(41, 'x'));
  EXPECT_EQ(setup().text(Field::PREFIX), std::u16string(40, u'x'));

  Apply_Tag(setup(), "<PREFIX=" + std::string(60, 'y') + ">");
  draw();
  EXPECT_EQ(box("Text2")->text(), QString(60, 'y'));
  pilot_.type("Text2", "z");
  EXPECT_EQ(setup().text(Field::PREFIX), std::u16string(60, u'y'));
  QTest::keyClick(box("Text2"), Qt::Key_End);
  for (int key = 0; key < 25; ++key) QTest::keyClick(box("Text2"), Qt::Key_Backspace);
  pilot_.type("Text2", QString(10, 'z'));
  EXPECT_EQ(setup().text(Field::PREFIX), std::u16string(35, u'y') + std::u16string(5, u'z'));

  box("Text3")->clear();
  QApplication::clipboard()->setText("ab\r\n" + QString(60, 'c'));
  box("Text3")->paste();
  EXPECT_EQ(setup().text(Field::SUFFIX).substr(0, 3), u"abc") << "a line end came in";
  EXPECT_LE(setup().text(Field::SUFFIX).size(), 40U);
}

TEST_F(Fields, text_that_no_key_gives_is_kept_as_it_came) {
  std::string bytes;
  for (int byte = 1; byte < 256; ++byte) {
    if (byte != 4) bytes += static_cast<char>(byte);
  }
  Apply_Tag(setup(), "<SUFFIX=" + bytes + ">");
  draw();
  pilot_.type("Text3", "");
  EXPECT_EQ(to_latin1(setup().text(Field::SUFFIX)), bytes);
  EXPECT_EQ(box("Text3")->text().size(), 254);
}

TEST_F(Fields, letters_in_the_delay_become_zeros_and_the_caret_stays) {
  pilot_.type("Text10", "1a3");
  EXPECT_EQ(box("Text10")->text(), "103");
  box("Text10")->setText("1b3");
  box("Text10")->setCursorPosition(1);
  QTest::keyRelease(box("Text10"), Qt::Key_Shift);
  EXPECT_EQ(box("Text10")->text(), "103");
  EXPECT_EQ(box("Text10")->cursorPosition(), 1);
}

TEST_F(Fields, a_pick_replaces_the_selection_and_hands_the_focus_back) {
  struct Pick {
    const char* before;
    int start;
    int length;
    const char* label;
    const char* after;
    int caret;
  };
  const Pick picks[]{
      {"", 0, 0, "CharList(2)", "[STX]", 5},       {"AB", 1, 0, "CharList(13)", "A[CR]B", 5},
      {"ABCD", 1, 2, "CharList(13)", "A[CR]D", 5}, {"A[CR]D", 1, 4, "CharList(13)", "A[CR]D", 5},
      {"x", 1, 0, "CharList(127)", "x[DEL]", 6},
  };
  pilot_.click("mnuPrefix");
  for (const Pick& pick : picks) {
    box("Text2")->setText(pick.before);
    box("Text2")->setFocus();
    box("Text2")->setSelection(pick.start, pick.length);
    if (pick.length == 0) box("Text2")->setCursorPosition(pick.start);
    pilot_.find("cmdCtrlPre")->setFocus();
    pilot_.click("cmdCtrlPre");
    EXPECT_TRUE(pilot_.find("Symbol1")->isVisible());
    pilot_.click(pick.label);
    EXPECT_FALSE(pilot_.find("Symbol1")->isVisible());
    EXPECT_EQ(box("Text2")->text(), pick.after);
    EXPECT_EQ(box("Text2")->cursorPosition(), pick.caret);
    EXPECT_TRUE(box("Text2")->hasFocus());
    EXPECT_FALSE(box("Text2")->hasSelectedText());
  }
}

TEST_F(Fields, the_pickers_work_by_keyboard_and_side_by_side) {
  pilot_.click("cmdCtrlPre");
  pilot_.click("mnuSuffix");
  pilot_.click("cmdCtrlSuf");
  EXPECT_FALSE(pilot_.find("Symbol1")->isHidden());
  pilot_.find("CharList2(0)")->setFocus();
  QTest::keyClick(pilot_.find("CharList2(0)"), Qt::Key_Right);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_EQ(box("Text3")->text(), "[BS]");
  EXPECT_FALSE(pilot_.find("Symbol1")->isHidden());
}

TEST_F(Fields, a_pick_past_the_limit_is_put_in_whole) {
  pilot_.type("Text2", QString(39, 'x'));
  pilot_.click("cmdCtrlPre");
  pilot_.click("CharList(0)");
  EXPECT_EQ(box("Text2")->text(), QString(39, 'x') + "[NUL]");
}

TEST_F(Fields, the_table_menu_selects_the_tabs) {
  const char* items[]{"mnuSend",   "mnuPower",  "mnuRs232",  "mnuSpeaker", "mnuPrefix",
                      "mnuSuffix", "mnuLinear", "mnuPDF417", "mnuMagnetic"};
  for (int tab = 8; tab >= 0; --tab) {
    pilot_.click(items[tab]);
    EXPECT_EQ(pilot_.find<QTabWidget>("SSTab1")->currentIndex(), tab);
  }
}

}  // namespace
}  // namespace orvex
