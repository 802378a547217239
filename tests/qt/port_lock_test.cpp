// One port, and two programs that want it.
#include <gtest/gtest.h>

#include <QProcess>

#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

TEST(PortLock, the_window_and_the_console_refuse_each_others_port) {
  Pilot pilot({});
  const QStringList find{"--device", pilot.folder() + "/com1", "find"};
  pilot.start();
  QProcess console;
  console.start(ORVEXCTL, find);
  ASSERT_TRUE(console.waitForFinished());
  EXPECT_EQ(console.exitCode(), 4);
  const QString holder =
      QString("held by process %1 (orvex_qt_tests)").arg(QCoreApplication::applicationPid());
  EXPECT_TRUE(console.readAllStandardError().contains(holder.toLocal8Bit()));

  pilot.end_tool();
  pilot.tell_scanner("silent on");
  const auto pings = [&] { return pilot.scanner_log().count("heard <TXPING:>"); };
  const auto before = pings();
  console.start(ORVEXCTL, find);
  ASSERT_TRUE(Pilot::wait_for([&] { return pings() > before; }));
  pilot.restart_tool();
  pilot.answer_next_box("OK");
  pilot.answer_next_box("OK");  // the first query meets a closed port
  pilot.start();
  ASSERT_EQ(pilot.boxes().size(), 2);
  EXPECT_TRUE(pilot.boxes().first().contains("Port is not available at COM:1"));
  EXPECT_TRUE(pilot.find("sbrStatus.Panels(1)")->toolTip().endsWith(": held by another program"));
  console.terminate();
  ASSERT_TRUE(console.waitForFinished());
  EXPECT_EQ(console.exitCode(), 130);
}

}  // namespace
}  // namespace orvex
