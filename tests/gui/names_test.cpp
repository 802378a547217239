#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

#include "demo/pilot.h"
#include "ui/qt/text.h"

namespace orvex {
namespace {

struct Named {
  const char* window;
  const char* kind;
  QStringList names;
};

bool is_of_kind(const QObject* control, const QString& kind) {
  return control != nullptr && control->inherits(kind.toLatin1().constData());
}

TEST(Names, every_control_is_found_by_its_own_name) {
  Pilot pilot({}, false);
  pilot.desktop().make_windows();
  QStringList frames_named;
  for (const FrameLayout& frame : frames()) frames_named += to_qt(frame.name);
  QStringList symbols;
  for (const int index : {0, 6, 7, 13, 27, 28, 31, 127}) {
    symbols += QString("CharList(%1)").arg(index);
    symbols += QString("CharList2(%1)").arg(index);
  }
  const Named all[]{
      {"Form1", "QTabWidget", {"SSTab1"}},
      {"Form1", "QStatusBar", {"sbrStatus"}},
      {"Form1",
       "QPushButton",
       {"cmdReceive", "cmdSend", "cmdFactory", "cmdExit", "cmdWeb", "cmdCtrlPre", "cmdCtrlSuf"}},
      {"Form1", "QGroupBox", frames_named},
      {"Form1", "QFrame", {"Symbol1", "Symbol2", "FrameLED"}},
      {"Form1", "QLineEdit", {"Text2", "Text3", "Text10"}},
      {"Form1",
       "QLabel",
       {"labRevision(1)",
        "labRevision(2)",
        "labRevision(3)",
        "labRevision(4)",
        "labWeb",
        "Label1(2)",
        "Label1(3)",
        "Label1(4)",
        "Label1(5)",
        "Label1(6)",
        "Label2",
        "Label3",
        "Label4",
        "Label8",
        "Image1",
        "Image2",
        "Image3",
        "Image4",
        "Image7",
        "Image8",
        "Image9",
        "Image10",
        "imgConnected",
        "imgNotConnected",
        "sbrStatus.Panels(1)",
        "sbrStatus.Panels(2)"}},
      {"Form1", "QLabel", symbols},
      {"Form1", "QMenu", {"mnufile", "mnuSearchS", "mnuupgrade", "mnuTable", "mnuhelp"}},
      {"Form1", "QAction", {"mnuopen",   "mnusave",    "mnusep1",     "mnuexit",    "mnuauto",
                            "mnumanual", "mnuload(2)", "mnuload(4)",  "mnuload(5)", "mnuSend",
                            "mnuPower",  "mnuRs232",   "mnuSpeaker",  "mnuPrefix",  "mnuSuffix",
                            "mnuLinear", "mnuPDF417",  "mnuMagnetic", "mnutech",    "mnuabout"}},
      {"Form2", "QLabel", {"Label1", "Label2", "Label3"}},
      {"Form2", "QPushButton", {"Command3"}},
      {"Form3", "QLineEdit", {"Text1", "Text2", "Text3", "Text4"}},
      {"Form3",
       "QLabel",
       {"Label1", "Label2", "Label3", "Label4", "Label5", "Label6", "Label7", "Label8"}},
      {"Form3", "QPushButton", {"Command1"}},
      {"Form3", "QProgressBar", {"ProgressBar1"}},
      {"Form3", "QWidget", {"Picture1"}},
      {"Form4", "QComboBox", {"Combo1", "Combo2", "Combo3"}},
      {"Form4", "QPushButton", {"Command1", "Command2"}},
  };
  for (const Named& row : all) {
    const QWidget* window = pilot.find(row.window, row.window);
    ASSERT_NE(window, nullptr) << row.window;
    for (const QString& name : row.names) {
      EXPECT_TRUE(is_of_kind(window->findChild<QObject*>(name), row.kind))
          << row.window << " " << name.toStdString() << " is no " << row.kind;
    }
  }
}

TEST(Names, every_value_has_its_option_button_in_its_frame_on_its_tab) {
  Pilot pilot({}, false);
  pilot.desktop().make_windows();
  auto* tabs = pilot.find<QTabWidget>("SSTab1");
  ASSERT_EQ(tabs->count(), 9);
  for (const Parameter& row : parameters()) {
    auto* frame = pilot.find<QGroupBox>(to_qt(row.frame));
    ASSERT_NE(frame, nullptr);
    int tab = 0;
    while (tab < tabs->count() && !tabs->widget(tab)->isAncestorOf(frame)) ++tab;
    ASSERT_LT(tab, tabs->count());
    EXPECT_EQ(tabs->tabText(tab), to_qt(tab_captions.at(static_cast<std::size_t>(tab))));
    for (const Choice& choice : row.choices) {
      auto* option = pilot.find<QRadioButton>("Option" + QString::number(choice.option));
      ASSERT_NE(option, nullptr) << choice.option;
      EXPECT_EQ(option->parentWidget(), frame) << choice.option;
      EXPECT_EQ(option->text(), to_qt(choice.caption));
    }
  }
}

}  // namespace
}  // namespace orvex
