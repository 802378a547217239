#include <gtest/gtest.h>

#include <QClipboard>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTest>
#include <algorithm>

#include "parameter_table.h"
#include "setup/apply.h"
#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

class Fields : public ::testing::Test {
 protected:
  Fields() : pilot_({}, 0) {
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

TEST_F(Fields, every_value_has_its_button_in_its_frame_on_its_tab_and_moves_with_its_tag) {
  const char* captions[]{" Revision Numbers", "Power Saving", "RS232",
                         "Speaker Volume",    "Prefix",       "Suffix",
                         "Linear Codes",      "PDF417",       "Magnetic Stripe"};
  const auto* tabs = pilot_.find<QTabWidget>("SSTab1");
  for (std::size_t i = 0; i < field_count; ++i) {
    const testing::ListedParameter& row = testing::parameter_table()[i];
    SCOPED_TRACE(row.name);
    const auto* frame = pilot_.find<QGroupBox>(row.frame);
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->title(), row.frame_caption);
    EXPECT_TRUE(tabs->widget(row.tab)->isAncestorOf(frame));
    EXPECT_EQ(tabs->tabText(row.tab), captions[row.tab]);
    for (const testing::ListedValue& value : row.values) {
      auto* option = pilot_.find<QRadioButton>("Option" + QString::number(value.option));
      ASSERT_TRUE(option != nullptr && option->parentWidget() == frame) << value.option;
      EXPECT_EQ(option->text(), value.caption);
      EXPECT_EQ(option->isChecked(), value.text == row.initial);
    }
    for (const testing::ListedValue& value : row.values) {
      auto* option = pilot_.find<QRadioButton>("Option" + QString::number(value.option));
      Apply_Tag(setup(), row.tag(value.text));
      draw();
      EXPECT_TRUE(option->isChecked()) << value.option;
      for (const testing::ListedValue& other : row.values) Apply_Tag(setup(), row.tag(other.text));
      draw();
      option->click();
      EXPECT_EQ(Setup_Tag_List(setup())[i], row.tag(value.text));
    }
    if (!row.values.empty()) continue;
    ASSERT_TRUE(box(row.text_box) != nullptr && box(row.text_box)->parentWidget() == frame);
    pilot_.type(row.text_box, QString(row.most_typed + 1, '7'));
    EXPECT_EQ(box(row.text_box)->text(), QString(row.most_typed, '7'));
  }
}

TEST_F(Fields, what_a_job_writes_is_on_the_screen) {
  Form1& form1 = pilot_.desktop().program.forms.form1;
  const struct {
    const char* control;
    bool& enabled;
  } table[]{{"cmdSend", form1.cmdSend.Enabled},       {"cmdReceive", form1.cmdReceive.Enabled},
            {"cmdFactory", form1.cmdFactory.Enabled}, {"cmdWeb", form1.cmdWeb.Enabled},
            {"SSTab1", form1.SSTab1.Enabled},         {"mnuauto", form1.mnuauto.Enabled},
            {"mnumanual", form1.mnumanual.Enabled},   {"mnuabout", form1.mnuabout.Enabled}};
  for (const auto& row : table) {
    for (const bool enabled : {false, true}) {
      row.enabled = enabled;
      draw();
      const QWidget* control = pilot_.find(row.control);
      EXPECT_EQ(control != nullptr ? control->isEnabled() : pilot_.can_choose(row.control), enabled)
          << row.control;
    }
  }
  const std::pair<const char*, std::string&> texts[]{
      {"labRevision(1)", form1.labRevision[1].Caption},
      {"labRevision(2)", form1.labRevision[2].Caption},
      {"labRevision(3)", form1.labRevision[3].Caption},
      {"labRevision(4)", form1.labRevision[4].Caption},
      {"Label4", form1.Label4.Caption},
      {"labWeb", form1.labWeb.Caption},
      {"sbrStatus.Panels(1)", form1.sbrStatus.Panels[1]},
      {"sbrStatus.Panels(2)", form1.sbrStatus.Panels[2]}};
  for (const auto& [name, text] : texts) text = name;
  for (const Indicator indicator : {Indicator::imgConnected, Indicator::imgNotConnected}) {
    form1.FrameLED = indicator;
    draw();
    const bool connected = indicator == Indicator::imgConnected;
    EXPECT_EQ(pilot_.find("imgConnected")->isVisible(), connected);
    EXPECT_EQ(pilot_.find("imgNotConnected")->isVisible(), !connected);
  }
  for (const auto& [name, text] : texts) EXPECT_EQ(pilot_.text(name), name);
  EXPECT_FALSE(pilot_.can_choose("mnutech"));
  EXPECT_TRUE(pilot_.find("cmdSend")->whatsThis().startsWith("Receive, change, Send"));
}

TEST_F(Fields, enter_presses_the_first_button_of_a_box_and_esc_the_refusing_one) {
  pilot_.leave_boxes_alone();
  const struct {
    Buttons buttons;
    Qt::Key key;
    Answer answer;
  } table[]{{Buttons::ok, Qt::Key_Return, Answer::ok},
            {Buttons::ok, Qt::Key_Escape, Answer::ok},
            {Buttons::retry_cancel, Qt::Key_Return, Answer::retry},
            {Buttons::retry_cancel, Qt::Key_Escape, Answer::cancel},
            {Buttons::yes_no, Qt::Key_Return, Answer::yes},
            {Buttons::yes_no, Qt::Key_Escape, Answer::no}};
  for (const auto& row : table) {
    QTimer user;
    user.callOnTimeout([&] {
      if (auto* shown = QApplication::activeModalWidget()) QTest::keyClick(shown, row.key);
    });
    user.start(10);
    EXPECT_EQ(pilot_.desktop().windows.MsgBox({.text = "?", .buttons = row.buttons}), row.answer);
  }
}

TEST_F(Fields, a_received_text_is_shown_whole_and_what_is_put_in_never_takes_it_above_the_limit) {
  const struct {
    const char* name;
    Field field;
    QString received;
    int start;
    int length;
    QString pasted;
    QString after;
  } table[]{
      {"Text2", Field::PREFIX, QString(60, 'y'), 5, 30, QString(29, 'z'),
       QString(5, 'y') + QString(10, 'z') + QString(25, 'y')},
      {"Text2", Field::PREFIX, QString(60, 'y'), 0, 60, QString(99, 'z'), QString(40, 'z')},
      {"Text3", Field::SUFFIX, QString(60, 'y'), 0, 60, QString(60, 'y'), QString(40, 'y')},
      {"Text3", Field::SUFFIX, QString(60, 'y'), 10, 5, QString(5, 'z'), QString(55, 'y')},
      {"Text3", Field::SUFFIX, QString(60, 'y'), 10, 5, QString(5, 'y'), QString(55, 'y')},
      {"Text3", Field::SUFFIX, QString(60, 'y'), 60, 0, "z", QString(60, 'y')},
      {"Text3", Field::SUFFIX, "", 0, 0, "ab\r\nc", "abc"},
      {"Text2", Field::PREFIX, QString(60, 'y'), 35, 25, QString(10, 'z'),
       QString(35, 'y') + QString(5, 'z')},
      {"Text10", Field::RSDELY, QString(30, '1'), 0, 30, QString(22, '2'), "222"},
      {"Text10", Field::RSDELY, QString(30, '1'), 1, 28, "9\r\n8", "191"},
  };
  for (const auto& row : table) {
    for (const bool typed : {false, true}) {
      setup().text(row.field) = row.received.toStdU16String();
      draw();
      auto* text = box(row.name);
      EXPECT_EQ(text->text(), row.received);
      text->setFocus();
      text->setCursorPosition(row.start);
      if (row.length > 0) text->setSelection(row.start, row.length);
      QApplication::clipboard()->setText(row.pasted);
      if (typed) {
        QTest::keyClicks(text, QString(row.pasted).remove(QRegularExpression("[\r\n]")));
      } else {
        text->paste();
      }
      EXPECT_EQ(text->text().toStdString(), row.after.toStdString()) << row.name << typed;
      EXPECT_EQ(to_latin1(setup().text(row.field)), row.after.toStdString());
      EXPECT_FALSE(text->hasSelectedText());
    }
  }
}

TEST_F(Fields, a_key_on_a_text_that_has_just_given_way_to_a_received_one_changes_nothing) {
  for (const std::string received :
       {"received", "", "a text that is longer than the one before it"}) {
    box("Text2")->setFocus();
    setup().text(Field::PREFIX) = u"before";
    draw();
    box("Text2")->setCursorPosition(3);
    Apply_Tag(setup(), "<PREFIX=" + received + ">");  // the next draw shows it
    QTest::keyClick(box("Text2"), Qt::Key_X);
    const int caret = std::min(3, static_cast<int>(received.size()));
    EXPECT_EQ(to_latin1(setup().text(Field::PREFIX)), received);
    EXPECT_EQ(box("Text2")->text().toStdString(), received);
    EXPECT_EQ(box("Text2")->cursorPosition(), caret);
    EXPECT_EQ(pilot_.desktop().program.forms.form1.Text2.SelStart, caret);
    QTest::keyClick(box("Text2"), Qt::Key_Y);
    const std::string typed = received.size() < 40 ? "y" : "";
    EXPECT_EQ(box("Text2")->text().toStdString(),
              received.substr(0, static_cast<std::size_t>(caret)) + typed +
                  received.substr(static_cast<std::size_t>(caret)));
  }
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
  const struct {
    const char* before;
    int start;
    int length;
    const char* after;
  } picks[]{{"AB", 1, 0, "A[CR]B"},
            {"ABCD", 1, 2, "A[CR]D"},
            {"A[CR]D", 1, 4, "A[CR]D"},
            {"A1234567890123456789012345678901234567B", 1, 0,
             "A[CR]1234567890123456789012345678901234567B"}};
  pilot_.click("mnuPrefix");
  for (const auto& pick : picks) {
    box("Text2")->setText(pick.before);
    box("Text2")->setFocus();
    box("Text2")->setSelection(pick.start, pick.length);
    if (pick.length == 0) box("Text2")->setCursorPosition(pick.start);
    pilot_.find("cmdCtrlPre")->setFocus();
    pilot_.click("cmdCtrlPre");
    EXPECT_TRUE(pilot_.find("Symbol1")->isVisible());
    pilot_.click("CharList(13)");
    EXPECT_FALSE(pilot_.find("Symbol1")->isVisible());
    EXPECT_EQ(box("Text2")->text(), pick.after);
    EXPECT_EQ(box("Text2")->cursorPosition(), 5);
    EXPECT_TRUE(box("Text2")->hasFocus());
    EXPECT_FALSE(box("Text2")->hasSelectedText());
  }
}

TEST_F(Fields, the_pickers_stand_side_by_side_in_five_columns_of_seven_rows) {
  pilot_.click("cmdCtrlPre");
  pilot_.click("mnuSuffix");
  pilot_.click("cmdCtrlSuf");
  EXPECT_FALSE(pilot_.find("Symbol1")->isHidden());
  const auto at = [this](int index) {
    return pilot_.find(QString("CharList2(%1)").arg(index))->pos();
  };
  for (int index = 0; index < 32; ++index) {
    EXPECT_EQ(at(index), QPoint(at(index / 7 * 7).x(), at(index % 7).y())) << index;
  }
  EXPECT_EQ(at(127), QPoint(at(28).x(), at(4).y()));
  EXPECT_LT(at(0).x(), at(7).x());
  EXPECT_LT(at(0).y(), at(1).y());
  pilot_.click("CharList2(8)");
  EXPECT_EQ(box("Text3")->text(), "[BS]");
  EXPECT_FALSE(pilot_.find("Symbol1")->isHidden());
}

TEST_F(Fields, each_symbol_of_the_pickers_says_what_it_is) {
  for (const char* array : {"CharList", "CharList2"}) {
    for (int index = 0; index < 128; index = index == 31 ? 127 : index + 1) {
      const QWidget* label = pilot_.find(QString("%1(%2)").arg(array).arg(index));
      EXPECT_TRUE(label->toolTip().endsWith(QString::asprintf(", %02X", index))) << index;
    }
  }
  EXPECT_EQ(pilot_.find("CharList(1)")->toolTip(), "Start of heading, 01");
}

TEST_F(Fields, what_the_scanner_says_of_itself_is_no_text_box_but_can_be_selected_and_copied) {
  pilot_.desktop().program.forms.form1.labRevision[4].Caption = " OX-4100";
  draw();
  auto* label = pilot_.find<QLabel>("labRevision(4)");
  EXPECT_EQ(label->frameShape(), QFrame::NoFrame);
  EXPECT_FALSE(label->autoFillBackground());
  label->setFocus();
  QTest::keyClick(label, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(label, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), " OX-4100");
  QApplication::clipboard()->clear();
  const int middle = label->height() / 2;
  QTest::mousePress(label, Qt::LeftButton, {}, {2, middle});
  QTest::mouseMove(label, {label->width() - 2, middle});
  QTest::mouseRelease(label, Qt::LeftButton, {}, {label->width() - 2, middle});
  EXPECT_EQ(label->selectedText(), " OX-4100");
}

}  // namespace
}  // namespace orvex
