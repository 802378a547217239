#include <gtest/gtest.h>

#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTest>
#include <QWindow>
#include <set>
#include <stdexcept>

#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

/// A user without a mouse: all that it does are keys, and they go where the focus is.
class Keyboard : public ::testing::Test {
 protected:
  Keyboard() : pilot_({"--rate", "9600"}) {
    pilot_.start();
    pilot_.find("Form1")->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(pilot_.find("Form1")));
  }

  static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, int times = 1) {
    for (; times > 0; --times) QTest::keyClick(window(), key, modifiers);
  }

  static void type(const char* letters) {
    for (; *letters != '\0'; ++letters) QTest::keyClick(window(), *letters);
  }

  static QWindow* window() {
    QWindow* window = QGuiApplication::focusWindow();
    if (window == nullptr) throw std::runtime_error("no window has the focus");
    return window;
  }

  /// The name of what has the focus; of an option button, that of its frame.
  static QString focus() {
    const QWidget* widget = QApplication::focusWidget();
    if (widget == nullptr) return "nothing";
    if (qobject_cast<const QRadioButton*>(widget) != nullptr) widget = widget->parentWidget();
    if (qobject_cast<const QTabBar*>(widget) != nullptr) widget = widget->parentWidget();
    return widget->objectName();
  }

  /// There is no window manager that would hand the focus on when a window goes.
  bool window_is_up(const QString& name) {
    return Pilot::wait_for([&] {
      const QWidget* active = QApplication::activeWindow();
      if (active != nullptr && QGuiApplication::focusWindow() != nullptr) {
        return active->objectName() == name;
      }
      pilot_.find("Form1")->activateWindow();
      return false;
    });
  }

  /// From the tabs to the tab with this number, and the focus stays there.
  void go_to_tab(int tab) {
    pilot_.find<QTabWidget>("SSTab1")->tabBar()->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Home);
    press(Qt::Key_Down, Qt::NoModifier, tab);
    ASSERT_EQ(pilot_.find<QTabWidget>("SSTab1")->currentIndex(), tab);
  }

  /// Tabs on to a control; false if it doesn't come.
  static bool tab_to(const QString& name) {
    for (int step = 0; step < 60 && focus() != name; ++step) press(Qt::Key_Tab);
    return focus() == name;
  }

  Pilot pilot_;
};

TEST_F(Keyboard, tab_goes_through_each_page_as_it_is_read_and_comes_round) {
  const QStringList pages[]{
      {"labRevision(1)", "labRevision(2)", "labRevision(3)", "labRevision(4)", "Label4", "labWeb",
       "cmdWeb"},
      {"Frame18"},
      {"Frame4", "Frame1", "Frame2", "Frame3", "Frame20", "Text10"},
      {"Frame10", "Frame19", "Frame23"},
      {"Text2", "cmdCtrlPre", "Frame6", "Frame25"},
      {"Text3", "cmdCtrlSuf", "Frame8"},
      {"Frame11", "Frame12", "Frame13"},
      {"Frame14", "Frame21"},
      {"Frame15", "Frame16", "Frame17", "Frame22", "Frame29"},
  };
  const QStringList buttons{"cmdReceive", "cmdSend", "cmdFactory", "cmdExit"};
  int tab = 0;
  for (const QStringList& page : pages) {
    go_to_tab(tab++);
    const QStringList wanted = page + buttons + QStringList{"SSTab1"};
    QStringList forward;
    for (qsizetype step = 0; step < wanted.size(); ++step) {
      press(Qt::Key_Tab);
      forward += focus();
    }
    EXPECT_EQ(forward.join(" ").toStdString(), wanted.join(" ").toStdString());
    QStringList back;
    for (qsizetype step = 0; step < wanted.size(); ++step) {
      back.prepend(focus());
      press(Qt::Key_Tab, Qt::ShiftModifier);
    }
    EXPECT_EQ(back.join(" ").toStdString(), wanted.join(" ").toStdString()) << "with Shift";
  }
}

TEST_F(Keyboard, arrows_reach_and_choose_each_option_of_a_group) {
  for (int tab = 1; tab < 9; ++tab) {
    go_to_tab(tab);
    const QWidget* page = pilot_.find<QTabWidget>("SSTab1")->currentWidget();
    for (const QGroupBox* frame : page->findChildren<QGroupBox*>()) {
      const auto options = frame->findChildren<QRadioButton*>(Qt::FindDirectChildrenOnly);
      if (options.isEmpty()) continue;
      ASSERT_TRUE(tab_to(frame->objectName()));
      std::set<const QWidget*> chosen;
      const auto walk = [&](Qt::Key key, int steps) {
        for (; steps > 0; --steps) {
          press(key);
          const auto* option = qobject_cast<const QRadioButton*>(QApplication::focusWidget());
          ASSERT_NE(option, nullptr) << focus().toStdString();
          ASSERT_EQ(option->parentWidget(), frame) << focus().toStdString();
          ASSERT_TRUE(option->isChecked()) << option->objectName().toStdString();
          chosen.insert(option);
        }
      };
      walk(Qt::Key_Up, 4);
      walk(Qt::Key_Left, 3);
      walk(Qt::Key_Down, 4);
      walk(Qt::Key_Right, 3);
      walk(Qt::Key_Up, 4);
      EXPECT_EQ(chosen.size(), static_cast<std::size_t>(options.size()))
          << frame->objectName().toStdString();
    }
  }
}

TEST_F(Keyboard, ctrl_tab_turns_the_pages_and_a_jobs_end_brings_the_focus_back) {
  const auto* tabs = pilot_.find<QTabWidget>("SSTab1");
  go_to_tab(2);
  ASSERT_TRUE(tab_to("Text10"));
  press(Qt::Key_Tab, Qt::ControlModifier);
  EXPECT_EQ(tabs->currentIndex(), 3);
  EXPECT_TRUE(QApplication::focusWidget() != nullptr && QApplication::focusWidget()->isVisible());
  press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(tabs->currentIndex(), 2);
  for (const char* button : {"cmdReceive", "cmdSend", "cmdFactory"}) {
    ASSERT_TRUE(tab_to(button));
    press(Qt::Key_Space);
    EXPECT_EQ(pilot_.panel(2), "") << button;
    EXPECT_EQ(focus(), button);
  }
  ASSERT_TRUE(tab_to("Text10"));
  press(Qt::Key_P, Qt::AltModifier);
  press(Qt::Key_A);
  ASSERT_TRUE(window_is_up("Form1"));
  EXPECT_EQ(focus(), "Text10") << "after a search, in which the tabs are disabled";
}

TEST_F(Keyboard, a_control_character_is_picked_by_keys) {
  go_to_tab(4);
  press(Qt::Key_Tab);
  type("AB");
  press(Qt::Key_Left);
  press(Qt::Key_Tab);
  press(Qt::Key_Space);
  ASSERT_TRUE(pilot_.find("Symbol1")->isVisible());
  press(Qt::Key_Tab);
  EXPECT_EQ(focus(), "CharList(0)");
  press(Qt::Key_Right);
  press(Qt::Key_Down);
  press(Qt::Key_Tab);
  EXPECT_EQ(focus(), "CharList(9)");
  press(Qt::Key_Tab, Qt::ShiftModifier);
  press(Qt::Key_Left);
  press(Qt::Key_Up, Qt::NoModifier, 3);
  EXPECT_EQ(focus(), "CharList(0)") << "there is nothing above it";
  press(Qt::Key_Down, Qt::NoModifier, 2);
  press(Qt::Key_Return);
  EXPECT_FALSE(pilot_.find("Symbol1")->isVisible());
  EXPECT_EQ(focus(), "Text2");
  type("!");
  EXPECT_EQ(pilot_.text("Text2").toStdString(), "A[STX]!B");
  press(Qt::Key_Tab);
  press(Qt::Key_Space);
  press(Qt::Key_Space);
  EXPECT_FALSE(pilot_.find("Symbol1")->isVisible()) << "the button closes it, too";
}

TEST_F(Keyboard, menus_dialogs_and_the_exit_are_worked_by_keys) {
  const auto* tabs = pilot_.find<QTabWidget>("SSTab1");
  const char table_keys[]{'n', 'o', 'r', 'v', 'p', 's', 'l', 'd', 'm'};
  for (int tab = 8; tab >= 0; --tab) {
    press(Qt::Key_T, Qt::AltModifier);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    QTest::keyClick(window(), table_keys[tab]);
    EXPECT_EQ(tabs->currentIndex(), tab);
  }
  press(Qt::Key_U, Qt::AltModifier);
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  EXPECT_TRUE(pilot_.desktop().program.forms.form1.mnuload.at(5).Checked);
  // A button and a menu have this letter: the first press does neither, the second goes on.
  press(Qt::Key_F, Qt::AltModifier);
  EXPECT_EQ(focus(), "cmdFactory");
  press(Qt::Key_F, Qt::AltModifier);
  EXPECT_NE(QApplication::activePopupWidget(), nullptr);
  press(Qt::Key_Escape);
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
  ASSERT_TRUE(window_is_up("Form1"));

  press(Qt::Key_H, Qt::AltModifier);
  press(Qt::Key_A);
  ASSERT_TRUE(window_is_up("Form2"));
  press(Qt::Key_Space);
  ASSERT_TRUE(window_is_up("Form1"));

  const Form4& form4 = pilot_.desktop().program.forms.form4;
  press(Qt::Key_P, Qt::AltModifier);
  press(Qt::Key_M);
  ASSERT_TRUE(window_is_up("Form4"));
  EXPECT_EQ(focus(), "Combo1");
  press(Qt::Key_Tab);
  press(Qt::Key_Down);
  EXPECT_EQ(form4.Combo2.Text, "19200");
  press(Qt::Key_Up);
  press(Qt::Key_Tab);
  press(Qt::Key_Down, Qt::AltModifier);
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  EXPECT_EQ(form4.Combo3.Text, "ODD");
  press(Qt::Key_Escape);
  ASSERT_TRUE(window_is_up("Form1"));
  press(Qt::Key_P, Qt::AltModifier);
  press(Qt::Key_M);
  ASSERT_TRUE(window_is_up("Form4"));
  EXPECT_EQ(form4.Combo3.Text, "NONE");
  EXPECT_EQ(focus(), "Combo1") << "again";
  press(Qt::Key_Tab);
  type("19200");
  EXPECT_EQ(form4.Combo2.Text, "19200");
  press(Qt::Key_Return);
  EXPECT_FALSE(form4.Visible);
  ASSERT_TRUE(window_is_up("Form1"));
  EXPECT_EQ(pilot_.panel(1).toStdString(), "Settings: 19200,N,8,1  Com Port: 1");

  press(Qt::Key_X, Qt::AltModifier);
  EXPECT_TRUE(Pilot::wait_for([&] { return pilot_.desktop().windows.ended(); }));
}

}  // namespace
}  // namespace orvex
