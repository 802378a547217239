#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>

#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

struct Named {
  const char* window;
  const char* kind;
  const char* names;  ///< parted by blanks
};

constexpr Named all[]{
    {"Form1", "QTabWidget", "SSTab1"},
    {"Form1", "QStatusBar", "sbrStatus"},
    {"Form1", "QPushButton", "cmdReceive cmdSend cmdFactory cmdExit cmdWeb cmdCtrlPre cmdCtrlSuf"},
    {"Form1", "QGroupBox", "Frame24 Frame28"},
    {"Form1", "QFrame", "Symbol1 Symbol2 FrameLED"},
    {"Form1", "QLabel",
     "labRevision(1) labRevision(2) labRevision(3) labRevision(4) labWeb Label1(2) Label1(3) "
     "Label1(4) Label1(5) Label1(6) Label2 Label3 Label4 Label8 Image1 Image2 Image3 Image4 Image7 "
     "Image8 Image9 Image10 imgConnected imgNotConnected sbrStatus.Panels(1) sbrStatus.Panels(2)"},
    {"Form1", "QMenu", "mnufile mnuSearchS mnuupgrade mnuTable mnuhelp"},
    {"Form1", "QAction",
     "mnuopen mnusave mnusep1 mnuexit mnuauto mnumanual mnuload(2) mnuload(4) mnuload(5) mnuSend "
     "mnuPower mnuRs232 mnuSpeaker mnuPrefix mnuSuffix mnuLinear mnuPDF417 mnuMagnetic mnutech "
     "mnuabout"},
    {"Form2", "QLabel", "Label1 Label2 Label3"},
    {"Form2", "QPushButton", "Command3"},
    {"Form3", "QLineEdit", "Text1 Text2 Text3 Text4"},
    {"Form3", "QLabel", "Label1 Label2 Label3 Label4 Label5 Label6 Label7 Label8"},
    {"Form3", "QPushButton", "Command1"},
    {"Form3", "QProgressBar", "ProgressBar1"},
    {"Form3", "QWidget", "Picture1"},
    {"Form4", "QComboBox", "Combo1 Combo2 Combo3"},
    {"Form4", "QPushButton", "Command1 Command2"},
};

TEST(Names, every_control_is_found_by_its_own_name) {
  Pilot pilot({}, 0);
  pilot.desktop().make_windows();
  EXPECT_TRUE(pilot.find("cmdSend")->whatsThis().startsWith("Receive, change, Send"));
  for (const Named& row : all) {
    const QWidget* window = pilot.find(row.window, row.window);
    ASSERT_NE(window, nullptr) << row.window;
    for (const QString& name : QString(row.names).split(' ')) {
      const auto* control = window->findChild<QObject*>(name);
      EXPECT_TRUE(control != nullptr && control->inherits(row.kind))
          << row.window << " " << name.toStdString() << " is no " << row.kind;
    }
  }
  EXPECT_FALSE(pilot.can_choose("mnutech"));
}

}  // namespace
}  // namespace orvex
