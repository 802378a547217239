#include <gtest/gtest.h>

#include <QComboBox>
#include <QFile>

#include "demo/pilot.h"

namespace orvex {
namespace {

TEST(ManualDialog, each_of_its_rates_finds_the_scanner_and_a_restart_scans_the_stored_port) {
  for (const char* rate : {"2400", "4800", "9600", "19200", "38400", "57600", "115200"}) {
    SCOPED_TRACE(rate);
    Pilot pilot({"--rate", rate});
    ASSERT_TRUE(QFile::rename(pilot.folder() + "/com1", pilot.folder() + "/com2"));
    ASSERT_TRUE(QFile::link("/nowhere", pilot.folder() + "/com1"));
    pilot.answer_next_box("OK");  // COM 1 is not available
    pilot.answer_next_box("OK");  // and the first query meets a closed port
    pilot.start();
    ASSERT_EQ(pilot.panel(1).toStdString(), "Settings: Closed");

    pilot.click("mnumanual");
    pilot.find<QComboBox>("Combo1", "Form4")->setCurrentText("Com 2");
    auto* rates = pilot.find<QComboBox>("Combo2", "Form4");
    ASSERT_GE(rates->findText(rate), 0);
    rates->setCurrentText(rate);
    pilot.click("Command1", "Form4");
    const QString settings = QString(rate) + ",N,8,1";
    EXPECT_FALSE(pilot.find("Form4", "Form4")->isVisible());
    EXPECT_EQ(pilot.panel(1), "Settings: " + settings + "  Com Port: 2");
    pilot.click("cmdReceive");
    EXPECT_EQ(pilot.panel(2).toStdString(), "");
    EXPECT_TRUE(pilot.text("labRevision(1)").startsWith(' '));
    QFile stored(pilot.folder() + "/Orvex.INI");
    ASSERT_TRUE(stored.open(QIODevice::ReadOnly));
    EXPECT_EQ(stored.readAll(), "PORTCOM=2;PORTSET=" + settings.toLatin1() + ";SUPPSET=;\r\n");

    pilot.restart_tool();
    pilot.start();
    EXPECT_EQ(pilot.panel(1), "Settings: " + settings + "  Com Port: 2");
    EXPECT_EQ(pilot.boxes().size(), 2) << "none after the start without a port";
  }
}

TEST(ManualDialog, it_stays_where_the_user_put_it_until_it_is_closed) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  pilot.click("mnumanual");
  QWidget* dialog = pilot.find("Form4", "Form4");
  const QPoint middle = dialog->pos();
  dialog->move(7, 9);
  pilot.click("Command2", "Form4");
  pilot.click("mnumanual");
  EXPECT_EQ(dialog->pos(), QPoint(7, 9));
  dialog->close();
  pilot.click("mnumanual");
  EXPECT_EQ(dialog->pos(), middle);
}

}  // namespace
}  // namespace orvex
