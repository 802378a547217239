#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QTextBrowser>
#include <cstdio>

#include "base/run_time_error.h"
#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

TEST(Session, the_last_rate_is_found_and_a_setup_goes_there_and_back) {
  Pilot pilot({"--rate", "1200", "--revision", "3.22"});
  QElapsedTimer clock;
  clock.start();
  pilot.start();
  EXPECT_GE(clock.elapsed(), 3500);
  EXPECT_LT(clock.elapsed(), 4500);  // the start of the windows is in it
  EXPECT_EQ(pilot.panel(1).toStdString(), "Settings: 1200,N,8,1  Com Port: 1");
  EXPECT_EQ(pilot.panel(2).toStdString(), "TIME OUT COUNT = 0");
  EXPECT_EQ(pilot.text("labRevision(1)"), "");
  for (const char* option : {"Option15", "Option9"}) {
    pilot.click(option);
    pilot.click("Option7");
    pilot.find<QLineEdit>("Text2")->setText("[STX]a:");
    pilot.find<QLineEdit>("Text10")->setText("7");
    pilot.click("cmdSend");
    EXPECT_EQ(pilot.panel(2).toStdString(), "");
    pilot.click("Option22");
    pilot.find<QLineEdit>("Text2")->clear();
    pilot.click("cmdReceive");
    EXPECT_EQ(pilot.panel(2).toStdString(), "");
    EXPECT_TRUE(pilot.text("labRevision(1)").startsWith(" 3.22"));
    EXPECT_TRUE(pilot.find<QRadioButton>(option)->isChecked());
    EXPECT_FALSE(pilot.find<QRadioButton>("Option22")->isChecked());
    EXPECT_EQ(pilot.text("Text2").toStdString(), "[STX]a:");
    EXPECT_EQ(pilot.text("Text10").toStdString(), "007");
  }
  EXPECT_EQ(pilot.panel(1).toStdString(), "Settings: 2400,e,8,1  Com Port: 1");
}

TEST(Session, a_wait_for_a_silent_scanner_costs_next_to_no_processor_time) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  pilot.tell_scanner("silent on");
  const double before = processor_seconds();
  pilot.click("cmdReceive");
  const double seconds = processor_seconds() - before;
  EXPECT_EQ(pilot.panel(2).toStdString(), "Error in Receiving");
  // Three waits of a second each; the windows' own drawing is in it too.
  EXPECT_LT(seconds, 0.2);
}

TEST(Session, a_saved_setup_is_opened_again_and_a_failure_shows_its_number) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  pilot.click("Option42");
  const QString path = pilot.folder() + "/setup \u65E5\u672C.txt";
  for (const char* text : {"old", "[STX]AB"}) {
    pilot.find<QLineEdit>("Text2")->setText(text);
    pilot.choose_next_file(path);
    pilot.click("mnusave");
  }
  pilot.find<QLineEdit>("Text2")->clear();
  pilot.click("Option43");
  pilot.choose_next_file(path);
  pilot.click("mnuopen");
  EXPECT_EQ(pilot.text("Text2").toStdString(), "[STX]AB");
  EXPECT_TRUE(pilot.find<QRadioButton>("Option43")->isChecked()) << "CTS/RTS is in no file";
  EXPECT_EQ(kept_settings(), QStringList()) << "a dialog has left something";

  QString next_folder;
  QTimer::singleShot(50, [&] {
    auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr) return;
    next_folder = dialog->directory().absolutePath();
    dialog->reject();
  });
  pilot.click("mnuopen");
  EXPECT_EQ(next_folder, pilot.folder()) << "a folder that was typed is the last one, too";
  EXPECT_EQ(pilot.boxes(), QStringList{}) << "a file is replaced without a question";
  const QString dialog = "Select a TXT file|Text Files (*.txt)";
  EXPECT_EQ(pilot.dialogs(), (QStringList{dialog, dialog, dialog}));

  pilot.choose_next_file(pilot.folder() + "/missing/setup.txt");
  pilot.answer_next_box("OK");
  pilot.click("mnusave");
  EXPECT_EQ(pilot.boxes(), QStringList{"Error: Error # 76 Path not found"});
}

/// A system that speaks German.
class GermanErrors final : public std::error_category {
 public:
  const char* name() const noexcept override { return "German"; }
  std::string message(int /*value*/) const override { return "Das Argument ist ung\xC3\xBCltig"; }
};

TEST(Session, the_systems_own_words_are_shown_as_they_are_meant) {
  Pilot pilot({}, 0);
  pilot.answer_next_box("OK");
  const GermanErrors german;
  pilot.desktop().windows.MsgBox({.text = error_of({22, german}).text});
  EXPECT_EQ(pilot.boxes().last().toStdString(), "Orvex1: Das Argument ist ung\xC3\xBCltig");
}

TEST(Session, hostile_text_is_shown_as_it_is_and_the_window_keeps_its_layout) {
  const QString markup = "<b>1</b>&amp;$(id)";
  const QString serial = "<img src='x'>" + QString(3000, 'W');
  Pilot pilot({"--model", markup, "--serial", serial});
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
  QElapsedTimer clock;
  clock.start();
  pilot.desktop().program.forms.form1.Label4.Caption = std::string(32767, '\n');
  pilot.desktop().windows.draw();
  Pilot::wait_for([] { return false; }, 50);
  EXPECT_LT(clock.elapsed(), 500);
  EXPECT_EQ(pilot.find("Form1")->size(), size);
  EXPECT_EQ(pilot.find("cmdExit")->geometry(), buttons);
}

TEST(Session, a_web_address_goes_to_the_desktop_and_nothing_else_does) {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  QTextBrowser desktop;  // its signal takes an address
  QStringList opened;
  QObject::connect(&desktop, &QTextBrowser::anchorClicked,
                   [&](const QUrl& url) { opened += url.toString(); });
  for (const char* scheme : {"file", "http"}) {
    QDesktopServices::setUrlHandler(scheme, &desktop, "anchorClicked");
  }
  for (const char* address : {"file:///etc/passwd", "a.example/$(id)", ""}) {
    pilot.desktop().program.forms.form1.labWeb.Caption = address;
    pilot.click("cmdWeb");
    EXPECT_TRUE(pilot.find("cmdWeb")->isEnabled());
  }
  EXPECT_EQ(opened, QStringList{"http://a.example/$(id)"});
  for (const char* scheme : {"file", "http"}) QDesktopServices::unsetUrlHandler(scheme);
}

}  // namespace
}  // namespace orvex
