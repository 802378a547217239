// Ports by links, and files and names that only this system has.
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QSerialPort>
#include <algorithm>
#include <cstdio>

#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

TEST(LinuxSession, a_port_that_another_program_holds_is_told_as_such_and_opens_once_it_is_free) {
  Pilot pilot({"--rate", "9600"});
  const QString device = pilot.device();
  QSerialPort other;
  other.setPortName(device);
  ASSERT_TRUE(other.open(QIODevice::ReadWrite));
  pilot.answer_next_box("OK");
  pilot.answer_next_box("OK");
  pilot.start();
  const QWidget* panel = pilot.find("sbrStatus.Panels(1)");
  EXPECT_EQ(panel->toolTip(), "COM 1, " + device + ": held by another program");
  other.close();
  pilot.click("mnuauto");
  EXPECT_EQ(panel->toolTip(), device);
}

TEST(LinuxSession, a_name_with_double_quotes_is_the_name_of_the_file) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  const QDir folder(pilot.folder());
  for (const char* name : {"a \"b\" c.txt", "19\" rack", "\"quoted\""}) {
    SCOPED_TRACE(name);
    const QStringList before = folder.entryList(QDir::Files);
    pilot.find<QLineEdit>("Text2")->setText(name);
    pilot.choose_next_file(folder.filePath(name));
    pilot.click("mnusave");
    QStringList after = folder.entryList(QDir::Files);
    after.removeOne(name);
    EXPECT_EQ(after, before);
    EXPECT_TRUE(folder.exists(name));
    pilot.find<QLineEdit>("Text2")->clear();
    pilot.choose_next_file(folder.filePath(name));
    pilot.click("mnuopen");
    EXPECT_EQ(pilot.text("Text2").toStdString(), name);
  }
  pilot.choose_next_file(folder.filePath("missing/\"x\""));
  pilot.answer_next_box("OK");
  pilot.click("mnusave");
  EXPECT_EQ(pilot.boxes(), QStringList{"Error: Error # 76 Path not found"});
}

TEST(LinuxSession, the_tool_tip_of_panel_1_names_the_device_that_is_open) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  const QString link = pilot.folder() + "/com1";
  const QString device = pilot.device();
  EXPECT_EQ(pilot.find("sbrStatus.Panels(1)")->toolTip(), device);
  QFile::remove(link);
  QFile::link("/dev/null", link);
  pilot.click("cmdReceive");
  EXPECT_EQ(pilot.panel(2).toStdString(), "");
  EXPECT_EQ(pilot.find("sbrStatus.Panels(1)")->toolTip(), device);
}

TEST(LinuxSession, files_that_are_no_setup_come_to_an_end_with_the_window_alive) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  QFile::link("/dev/zero", pilot.folder() + "/endless");
  QFile beyond(pilot.folder() + "/beyond");
  ASSERT_TRUE(beyond.open(QIODevice::WriteOnly) && beyond.resize(qint64{1} << 40));
  const struct {
    const char* name;
    QByteArray frame;  ///< again and again, empty if there is another file of this name
    QStringList boxes;
  } files[]{{"starts", "\x01", {}},
            {"text", "x", {}},
            {"value", "\x01<PREFIX=" + QByteArray(50'000'000, 'x') + ">\x04", {}},
            {"endless", "", {"Error: Error # 75 Path/File access error"}},
            {"beyond", "", {"Error: Error # 1012 Cannot allocate memory"}}};
  QElapsedTimer since_turn;
  qint64 longest_ms = 0;
  QTimer turns;
  turns.callOnTimeout([&] { longest_ms = std::max<qint64>(longest_ms, since_turn.restart()); });
  for (const auto& file : files) {
    SCOPED_TRACE(file.name);
    QFile whole(pilot.folder() + "/" + file.name);
    if (!file.frame.isEmpty()) {
      ASSERT_TRUE(whole.open(QIODevice::WriteOnly));
      whole.write(file.frame.repeated(100'000'000 / file.frame.size()));
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

}  // namespace
}  // namespace orvex
