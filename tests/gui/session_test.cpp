#include <gtest/gtest.h>

#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "demo/pilot.h"

namespace orvex {
namespace {

constexpr const char* scanner_buttons[]{"cmdSend", "cmdReceive", "cmdFactory", "cmdWeb"};

/// The enabled buttons as one letter each, in the order send, receive, factory, web.
std::string enabled(const Pilot& pilot) {
  std::string letters;
  for (const char* name : scanner_buttons) {
    letters += pilot.find<QPushButton>(name)->isEnabled() ? name[3] : '-';
  }
  return letters;
}

/// Notes the enabled buttons while a job runs.
class Watch {
 public:
  explicit Watch(const Pilot& pilot) {
    timer_.callOnTimeout([this, &pilot] {
      if (pilot.find("Form1") == nullptr) return;
      const std::string letters = enabled(pilot);
      if (seen_.empty() || seen_.back() != letters) seen_.push_back(letters);
      tab_was_disabled_ |= !pilot.find("SSTab1")->isEnabled();
      menus_were_disabled_ |= !pilot.can_choose("mnuauto") && !pilot.can_choose("mnumanual");
    });
    timer_.start(1);
  }
  bool saw(const std::string& letters) const { return std::ranges::count(seen_, letters) > 0; }
  bool tab_was_disabled() const { return tab_was_disabled_; }
  bool menus_were_disabled() const { return menus_were_disabled_; }

 private:
  QTimer timer_;
  std::vector<std::string> seen_;
  bool tab_was_disabled_ = false;
  bool menus_were_disabled_ = false;
};

TEST(Session, the_scanner_is_found_and_its_setup_received_changed_sent_and_received_back) {
  Pilot pilot({"--rate", "19200", "--revision", "3.22"});
  pilot.start();
  EXPECT_EQ(pilot.panel(1).toStdString(), "Settings: 19200,N,8,1  Com Port: 1");
  EXPECT_EQ(pilot.panel(2).toStdString(), "TIME OUT COUNT = 0");
  EXPECT_EQ(pilot.text("labRevision(1)"), "");
  EXPECT_EQ(pilot.find("Form1")->windowTitle(), " Orvex - 2.11");
  pilot.click("cmdReceive");
  EXPECT_EQ(pilot.panel(2).toStdString(), "");
  EXPECT_TRUE(pilot.text("labRevision(1)").startsWith(" 3.22"));

  pilot.click("Option14");
  pilot.click("Option7");
  pilot.find<QLineEdit>("Text2")->clear();
  pilot.type("Text2", "[STX]a:");
  pilot.type("Text10", "7");
  pilot.click("cmdSend");
  EXPECT_EQ(pilot.panel(1).toStdString(), "Settings: 57600,e,8,1  Com Port: 1");
  EXPECT_EQ(pilot.panel(2).toStdString(), "");

  pilot.click("Option8");
  pilot.find<QLineEdit>("Text2")->clear();
  pilot.click("cmdReceive");
  EXPECT_EQ(pilot.panel(2).toStdString(), "");
  EXPECT_TRUE(pilot.find<QRadioButton>("Option14")->isChecked());
  EXPECT_TRUE(pilot.find<QRadioButton>("Option7")->isChecked());
  EXPECT_EQ(pilot.text("Text2").toStdString(), "[STX]a:");
  EXPECT_EQ(pilot.text("Text10").toStdString(), "007");
}

TEST(Session, each_rate_is_found_in_its_turn_and_can_be_left_for_another) {
  struct Rate {
    const char* name;
    const char* option;
  };
  const Rate rates[]{{"9600", "Option11"},  {"19200", "Option12"}, {"115200", "Option15"},
                     {"57600", "Option14"}, {"38400", "Option13"}, {"4800", "Option10"},
                     {"2400", "Option9"},   {"1200", "Option8"}};
  for (int turn = 0; turn < 8; ++turn) {
    Pilot pilot({"--rate", rates[turn].name});
    QElapsedTimer clock;
    clock.start();
    pilot.start();
    std::printf("%6s Bps found after %lld ms\n", rates[turn].name, clock.elapsed());
    EXPECT_GE(clock.elapsed(), 500 * turn);
    EXPECT_LT(clock.elapsed(), 500 * turn + 1000);  // the start of the windows is in it
    const QString port_line = "Settings: %1,%2,8,1  Com Port: 1";
    EXPECT_EQ(pilot.panel(1), port_line.arg(rates[turn].name, "N"));
    pilot.click("cmdReceive");
    EXPECT_EQ(pilot.panel(2).toStdString(), "");
    const Rate& next = rates[(turn + 3) % 8];
    pilot.click(next.option);
    pilot.click("cmdSend");
    EXPECT_EQ(pilot.panel(1), port_line.arg(next.name, "n"));
    pilot.click("Option22");
    pilot.click("cmdReceive");
    EXPECT_EQ(pilot.panel(2).toStdString(), "");
    EXPECT_TRUE(pilot.find<QRadioButton>(next.option)->isChecked());
    EXPECT_FALSE(pilot.find<QRadioButton>("Option22")->isChecked());
  }
}

TEST(Session, the_buttons_follow_each_job_and_each_end_of_a_scan) {
  Pilot pilot({"--rate", "9600"});
  pilot.tell_scanner("silent on");
  pilot.answer_next_box("Cancel");
  pilot.answer_next_box("OK");  // the first query meets a closed port
  {
    const Watch watch(pilot);
    pilot.start();
    EXPECT_EQ(enabled(pilot), "---W") << "a cancelled scan";
    EXPECT_TRUE(watch.saw("---W"));
  }
  EXPECT_EQ(pilot.boxes(),
            (QStringList{"Orvex1: Connection Failed", "Orvex1: The port is not open"}));

  pilot.tell_scanner("silent off");
  {
    const Watch watch(pilot);
    pilot.click("mnuauto");
    EXPECT_TRUE(watch.tab_was_disabled());
    EXPECT_TRUE(watch.menus_were_disabled());
  }
  EXPECT_EQ(enabled(pilot), "SRFW") << "a scan that found the scanner";
  EXPECT_TRUE(pilot.find("SSTab1")->isEnabled());
  EXPECT_TRUE(pilot.can_choose("mnuauto"));

  for (const char* job : {"cmdReceive", "cmdSend", "cmdFactory"}) {
    const Watch watch(pilot);
    pilot.click(job);
    EXPECT_TRUE(watch.saw("----")) << job;
    EXPECT_EQ(enabled(pilot), "SRFW") << job;
  }

  pilot.tell_scanner("silent on");
  pilot.click("cmdReceive");
  EXPECT_EQ(pilot.panel(2).toStdString(), "Error in Receiving");
  EXPECT_EQ(enabled(pilot), "SRFW") << "a failed job";

  pilot.click("mnumanual");
  ASSERT_TRUE(pilot.find("Form4", "Form4")->isVisible());
  {
    const Watch watch(pilot);
    pilot.click("Command1", "Form4");
    EXPECT_TRUE(watch.saw("----")) << "Open Port";
  }
  EXPECT_EQ(enabled(pilot), "SRFW") << "after Open Port";
  EXPECT_FALSE(pilot.find("Form4", "Form4")->isVisible());

  QFile::remove(pilot.folder() + "/com2");
  QFile::link("/nowhere", pilot.folder() + "/com2");
  pilot.click("mnumanual");
  pilot.find<QComboBox>("Combo1", "Form4")->setCurrentIndex(1);
  pilot.click("Command1", "Form4");
  EXPECT_EQ(enabled(pilot), "SRFW") << "the open port was closed, and a failing reopen is silent";
  pilot.click("mnumanual");
  pilot.answer_next_box("OK");
  pilot.click("Command1", "Form4");
  EXPECT_EQ(enabled(pilot), "----") << "a port that is not available";
  EXPECT_EQ(pilot.panel(1).toStdString(), "Settings: Closed");
  EXPECT_TRUE(pilot.find("imgNotConnected")->isVisible());
  EXPECT_TRUE(pilot.find("Form4", "Form4")->isVisible());
  pilot.click("Command2", "Form4");
  EXPECT_EQ(enabled(pilot), "----");
}

TEST(Session, a_start_without_a_port_says_so_and_leaves_the_tabs_disabled) {
  Pilot pilot({}, false);
  QFile::link("/nowhere", pilot.folder() + "/com1");
  pilot.answer_next_box("OK");
  pilot.answer_next_box("OK");
  pilot.start();
  EXPECT_EQ(pilot.boxes().value(0).toStdString(),
            "Orvex1: Port is not available at COM:1\nYou can change the port settings from\n"
            "PC Port Setting -> Manual Baud Setting...");
  EXPECT_EQ(pilot.panel(1).toStdString(), "Settings: Closed");
  EXPECT_FALSE(pilot.find("SSTab1")->isEnabled());
  EXPECT_TRUE(pilot.can_choose("mnumanual"));
}

TEST(Session, a_wait_for_a_silent_scanner_costs_next_to_no_processor_time) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  pilot.tell_scanner("silent on");
  const std::clock_t before = std::clock();
  pilot.click("cmdReceive");
  const double seconds = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
  EXPECT_EQ(pilot.panel(2).toStdString(), "Error in Receiving");
  // Three waits of a second each; the windows' own drawing is in it too.
  EXPECT_LT(seconds, 0.2);
}

TEST(Session, a_saved_setup_is_opened_again_and_a_failure_shows_its_number) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  pilot.type("Text2", "[STX]AB");
  pilot.click("Option42");
  pilot.choose_next_file(pilot.folder() + "/setup.txt");
  pilot.click("mnusave");
  pilot.find<QLineEdit>("Text2")->clear();
  pilot.click("Option43");
  pilot.choose_next_file(pilot.folder() + "/setup.txt");
  pilot.click("mnuopen");
  EXPECT_EQ(pilot.text("Text2").toStdString(), "[STX]AB");
  EXPECT_TRUE(pilot.find<QRadioButton>("Option43")->isChecked()) << "CTS/RTS is in no file";

  pilot.choose_next_file(pilot.folder() + "/missing/setup.txt");
  pilot.answer_next_box("OK");
  pilot.click("mnusave");
  EXPECT_EQ(pilot.boxes(), QStringList{"Error: Error # 76 Path not found"});
}

TEST(Session, files_that_are_no_setup_come_to_an_end_with_the_window_alive) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  QFile::link("/dev/zero", pilot.folder() + "/endless");
  QFile beyond(pilot.folder() + "/beyond");
  ASSERT_TRUE(beyond.open(QIODevice::WriteOnly) && beyond.resize(qint64{1} << 40));
  const struct {
    const char* name;
    char byte;  ///< of a file of 100 MB, 0 where there is another one of this name
    QStringList boxes;
  } files[]{{"starts", '\x01', {}},
            {"text", 'x', {}},
            {"endless", 0, {"Error: Error # 75 Path/File access error"}},
            {"beyond", 0, {"Error: Error # 1012 Cannot allocate memory"}}};
  QElapsedTimer since_turn;
  qint64 longest_ms = 0;
  QTimer turns;
  turns.callOnTimeout([&] { longest_ms = std::max<qint64>(longest_ms, since_turn.restart()); });
  for (const auto& file : files) {
    SCOPED_TRACE(file.name);
    QFile whole(pilot.folder() + "/" + file.name);
    if (file.byte != 0) {
      ASSERT_TRUE(whole.open(QIODevice::WriteOnly));
      whole.write(QByteArray(100'000'000, file.byte));
      whole.close();
    }
    pilot.choose_next_file(whole.fileName());
    if (!file.boxes.empty()) pilot.answer_next_box("OK");
    const auto boxes_before = pilot.boxes().size();
    QElapsedTimer clock;
    clock.start();
    since_turn.start();
    turns.start(1);
    pilot.click("mnuopen");
    turns.stop();
    std::printf("%-8s %lld ms, the window's longest rest %lld ms\n", file.name, clock.elapsed(),
                longest_ms);
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_LT(longest_ms, 500);
    EXPECT_EQ(pilot.boxes().mid(boxes_before), file.boxes);
  }
}

TEST(Session, hostile_text_is_shown_as_it_is_and_the_window_keeps_its_layout) {
  const QString markup = "<b>1</b>&amp;$(id)";
  const QString serial = "<img src='x'>" + QString(3000, 'W');
  Pilot pilot({"--model", markup, "--web", "file:///etc/passwd", "--serial", serial});
  pilot.start();
  const QSize size = pilot.find("Form1")->size();
  const QRect buttons = pilot.find("cmdExit")->geometry();
  pilot.click("cmdReceive");
  EXPECT_EQ(pilot.panel(2).toStdString(), "");
  EXPECT_EQ(pilot.text("labRevision(4)").toStdString(), " " + markup.left(8).toStdString());
  EXPECT_EQ(pilot.text("Label4"), serial + "\r\n");
  for (const char* name : {"labRevision(4)", "Label4", "labWeb", "sbrStatus.Panels(2)"}) {
    EXPECT_EQ(pilot.find<QLabel>(name)->textFormat(), Qt::PlainText) << name;
  }
  pilot.desktop().program.forms.form1.Label4.Caption += std::string(100000, 'W');
  pilot.desktop().windows.draw();
  Pilot::wait_for([] { return false; }, 50);
  EXPECT_EQ(pilot.text("Label4").size(), serial.size() + 2 + 100000);
  EXPECT_EQ(pilot.find("Form1")->size(), size);
  EXPECT_EQ(pilot.find("cmdExit")->geometry(), buttons);
  pilot.click("cmdWeb");
  EXPECT_TRUE(pilot.find("cmdWeb")->isEnabled());
}

TEST(Session, the_about_box_shows_ok_in_place_of_the_scan_and_brings_it_back) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  pilot.click("mnuabout");
  EXPECT_TRUE(pilot.find("Form2", "Form2")->isVisible());
  EXPECT_TRUE(pilot.find("Form2", "Form2")->isModal());
  EXPECT_FALSE(pilot.find("Label3", "Form2")->isVisible());
  pilot.click("Command3", "Form2");
  EXPECT_FALSE(pilot.find("Form2", "Form2")->isVisible());
  EXPECT_EQ(pilot.text("Label3", "Form2").toStdString(), "  9600");
  EXPECT_EQ(pilot.text("Label2", "Form2").toStdString(), "COM:1 at");
}

}  // namespace
}  // namespace orvex
