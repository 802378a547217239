#include <gtest/gtest.h>

#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QTest>

#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

TEST(ManualDialog, a_scanner_at_another_port_is_found_and_a_restart_scans_it) {
  Pilot pilot({"--rate", "38400"}, 2);
  pilot.answer_next_box("OK");
  pilot.answer_next_box("OK");
  pilot.start();
  EXPECT_EQ(pilot.boxes().value(0).toStdString(),
            "Orvex1: Port is not available at COM:1\nYou can change the port settings from\n"
            "PC Port Setting -> Manual Baud Setting...");
  EXPECT_EQ(pilot.panel(1).toStdString(), "Settings: Closed");
  EXPECT_FALSE(pilot.find("SSTab1")->isEnabled());

  pilot.click("mnumanual");
  EXPECT_TRUE(pilot.find("Form4", "Form4")->isModal());
  const struct {
    const char* name;
    QStringList items;
    const char* item;
  } boxes[]{
      {"Combo1", {"Com 1", "Com 2", "Com 3", "Com 4", "Com 5", "Com 6"}, "Com 2"},
      {"Combo2", {"2400", "4800", "9600", "19200", "38400", "57600", "115200"}, "38400"},
      {"Combo3", {"NONE", "ODD", "EVEN"}, "NONE"},
  };
  for (const auto& box : boxes) {
    auto* combo = pilot.find<QComboBox>(box.name, "Form4");
    QStringList items;
    for (int item = 0; item < combo->count(); ++item) items += combo->itemText(item);
    EXPECT_EQ(items, box.items);
    combo->setCurrentText(box.item);
  }
  const auto* ports = pilot.find<QComboBox>("Combo1", "Form4");
  const QString device = pilot.device(2);
  EXPECT_EQ(ports->itemData(0, Qt::ToolTipRole), pilot.device(1));
  EXPECT_EQ(ports->itemData(1, Qt::ToolTipRole), device);
  EXPECT_EQ(ports->toolTip(), device);
  pilot.click("Command1", "Form4");
  EXPECT_FALSE(pilot.find("Form4", "Form4")->isVisible());
  EXPECT_EQ(pilot.panel(1).toStdString(), "Settings: 38400,N,8,1  Com Port: 2");
  pilot.click("cmdReceive");
  EXPECT_EQ(pilot.panel(2).toStdString(), "");
  QFile stored(pilot.folder() + "/Orvex.INI");
  ASSERT_TRUE(stored.open(QIODevice::ReadOnly));
  EXPECT_EQ(stored.readAll(), "PORTCOM=2;PORTSET=38400,N,8,1;SUPPSET=;\r\n");

  pilot.restart_tool();
  pilot.start();
  EXPECT_EQ(pilot.panel(1).toStdString(), "Settings: 38400,N,8,1  Com Port: 2");
  EXPECT_EQ(pilot.boxes().size(), 2) << "none after the start without a port";
}

TEST(ManualDialog, it_keeps_its_place_and_its_texts_until_it_is_closed) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  pilot.click("mnumanual");
  QWidget* dialog = pilot.find("Form4", "Form4");
  const ComboBox& parity = pilot.desktop().program.forms.form4.Combo3;
  const QPoint middle = dialog->pos();
  dialog->move(7, 9);
  const auto* combo = pilot.find<QComboBox>("Combo3", "Form4");
  EXPECT_EQ(combo->completer(), nullptr) << "what is typed stays as typed";
  auto* edit = combo->lineEdit();
  edit->setFocus();
  edit->clear();
  QTest::keyClicks(edit, "none");
  QTest::keyClick(edit, Qt::Key_Tab);
  pilot.click("Command2", "Form4");
  EXPECT_EQ(parity.Text, "none");
  EXPECT_EQ(parity.ListIndex, -1) << "no item of the list";
  pilot.click("mnumanual");
  EXPECT_EQ(dialog->pos(), QPoint(7, 9));
  EXPECT_EQ(edit->text(), "none");
  dialog->close();
  pilot.click("mnumanual");
  EXPECT_EQ(dialog->pos(), middle);
  EXPECT_EQ(edit->text(), "NONE");
}

}  // namespace
}  // namespace orvex
