#include <gtest/gtest.h>

#include <QHelpEvent>
#include <QLabel>
#include <QListWidget>
#include <QScreen>
#include <QTextDocument>
#include <QToolTip>

#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

QLabel* tip_label() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->inherits("QTipLabel") && window->isVisible()) return qobject_cast<QLabel*>(window);
  }
  return nullptr;
}

/// What a user reads whose mouse rests on the widget.
QString read_tip(QWidget& widget, QPoint at = {1, 1}) {
  QToolTip::hideText();
  Pilot::wait_for([] { return tip_label() == nullptr; });
  QHelpEvent rest(QEvent::ToolTip, at, widget.mapToGlobal(at));
  QApplication::sendEvent(&widget, &rest);
  const QLabel* tip = tip_label();
  if (tip == nullptr) return {};
  EXPECT_TRUE(tip->screen()->geometry().contains(tip->geometry()));
  const bool rich = tip->textFormat() != Qt::PlainText && Qt::mightBeRichText(tip->text());
  QTextDocument document;
  document.setHtml(rich ? tip->text() : QString());
  return rich ? document.toPlainText() : tip->text();
}

TEST(Tips, markup_in_a_tip_is_text_in_every_place) {
  const QString markup = "/dev/<b>x</b>&amp;<img src='x'>";
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  pilot.desktop().program.forms.form1.port_tip = markup.toStdString();
  pilot.desktop().windows.draw();
  EXPECT_EQ(read_tip(*pilot.find("sbrStatus.Panels(1)")), markup);
  pilot.find("cmdWeb")->setToolTip(markup);
  EXPECT_EQ(read_tip(*pilot.find("cmdWeb")), markup);
  QListWidget list;
  list.addItem("x");
  list.item(0)->setToolTip(markup);
  list.show();
  EXPECT_EQ(read_tip(*list.viewport(), list.visualItemRect(list.item(0)).center()), markup);
}

TEST(Tips, a_value_without_the_room_it_needs_is_read_in_its_tip_up_to_a_sane_size) {
  const struct {
    QString serial;
    QString tip;
  } table[]{{"4711", ""},
            {QString(300, 'W'), QString(300, 'W')},
            {"4711\nand more\x1B", "4711 and more "},
            {"<img src='x'>" + QString(32000, 'W'),
             ("<img src='x'>" + QString(32000, 'W')).left(1000) + QChar(0x2026)}};
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  for (const auto& row : table) {
    pilot.desktop().program.forms.form1.Label4.Caption = row.serial.toStdString() + "\r\n";
    pilot.desktop().windows.draw();
    EXPECT_EQ(read_tip(*pilot.find("Label4")).remove('\n'), row.tip) << row.serial.size();
  }
}

}  // namespace
}  // namespace orvex
