#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QFont>
#include <QProgressBar>
#include <QScrollArea>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>

#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

/// What a desktop's frame takes of the screen, in pixels: title bar and lower border, and both
/// sides.
constexpr QSize frame_of_desktop(8, 40);

/// All windows at the usual type and at type of twice the size, on a screen of 1024 by 600 pixels.
/// A second run, with the environment variable QT_FONT_DPI at 192, has everything at twice the
/// size.
class SmallScreen : public ::testing::TestWithParam<int> {
 protected:
  SmallScreen() {
    usual_ = QApplication::font();
    QFont font = usual_;
    font.setPointSizeF(font.pointSizeF() * GetParam());
    QApplication::setFont(font);
    const QSize screen = QGuiApplication::primaryScreen()->size() *
                         QGuiApplication::primaryScreen()->devicePixelRatio();
    EXPECT_EQ(screen, QSize(1024, 600));
    pilot_ = std::make_unique<Pilot>(QStringList{"--rate", "9600"});
    pilot_->start();
  }
  ~SmallScreen() override {
    pilot_.reset();
    QApplication::setFont(usual_);
  }

  void expect_on_screen(const QString& name, const QSize& frame = frame_of_desktop) {
    const QWidget* window = pilot_->find(name, name);
    ASSERT_TRUE(window != nullptr && window->isVisible()) << name.toStdString();
    const QRect with_frame(window->pos(), window->size() + frame);
    EXPECT_TRUE(window->screen()->availableGeometry().contains(with_frame))
        << name.toStdString() << " takes " << with_frame.width() << " by " << with_frame.height()
        << " at " << with_frame.x() << ", " << with_frame.y();
    for (const QWidget* control : window->findChildren<QWidget*>()) {
      const bool fixed = qobject_cast<const QAbstractButton*>(control) != nullptr ||
                         qobject_cast<const QProgressBar*>(control) != nullptr;
      if (fixed && !scrolls(*control) && control->isVisible()) expect_whole(*control);
    }
  }

  /// Whether it is on a page or a tab bar, which scroll.
  static bool scrolls(const QWidget& control) {
    for (const QWidget* around = &control; around != nullptr; around = around->parentWidget()) {
      if (qobject_cast<const QScrollArea*>(around) != nullptr) return true;
      if (qobject_cast<const QTabBar*>(around) != nullptr) return true;
    }
    return false;
  }

  static void expect_whole(const QWidget& control) {
    const QRegion seen = control.visibleRegion();
    EXPECT_EQ(seen.boundingRect(), control.rect()) << control.objectName().toStdString();
    const auto* button = qobject_cast<const QAbstractButton*>(&control);
    const QSize least = button == nullptr
                            ? control.minimumSizeHint()
                            : button->fontMetrics().size(Qt::TextShowMnemonic, button->text());
    EXPECT_GE(control.width(), least.width()) << control.objectName().toStdString();
    EXPECT_GE(control.height(), least.height()) << control.objectName().toStdString();
  }

  /// Beside an icon and three buttons.
  void expect_whole_title(const QString& name) {
    const QWidget* window = pilot_->find(name, name);
    const QFontMetrics metrics(window->font());
    EXPECT_GE(window->width(),
              metrics.horizontalAdvance(window->windowTitle()) + 4 * metrics.height())
        << name.toStdString();
  }

  QFont usual_;
  std::unique_ptr<Pilot> pilot_;
};

TEST_P(SmallScreen, the_main_window_keeps_its_buttons_and_scrolls_to_the_focus) {
  auto* tabs = pilot_->find<QTabWidget>("SSTab1");
  QWidget* bar = tabs->tabBar();
  pilot_->find("Form1")->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(pilot_->find("Form1")));
  if (GetParam() == 1 && QGuiApplication::primaryScreen()->devicePixelRatio() == 1) {
    EXPECT_EQ(pilot_->find("Form1")->size(), QSize(599, 521)) << "8980 by 7815 twips";
  }
  pilot_->click("cmdCtrlPre");
  pilot_->click("cmdCtrlSuf");
  for (int tab = 0; tab < tabs->count(); ++tab) {
    SCOPED_TRACE(tab);
    bar->setFocus(Qt::TabFocusReason);
    tabs->setCurrentIndex(tab);
    Pilot::wait_for([] { return false; }, 30);
    expect_on_screen("Form1");
    for (const char* name : {"cmdReceive", "cmdSend", "cmdFactory", "cmdExit", "sbrStatus"}) {
      expect_whole(*pilot_->find(name));
    }
    for (int step = 0; step < 60; ++step) {
      QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_Tab);
      const QWidget* control = QApplication::focusWidget();
      ASSERT_NE(control, nullptr);
      if (control == bar) break;
      EXPECT_FALSE(control->visibleRegion().isEmpty()) << control->objectName().toStdString();
      if (control->width() < tabs->currentWidget()->width()) expect_whole(*control);
    }
    EXPECT_EQ(QApplication::focusWidget(), bar) << "it doesn't come round";
  }
}

TEST_P(SmallScreen, the_other_windows_are_on_the_screen_with_all_their_controls) {
  pilot_->click("mnuabout");
  expect_on_screen("Form2", {0, 0});
  const QWidget* ok = pilot_->find("Command3", "Form2");
  // The texts follow the first picture, which a quick scan may have gone without.
  ASSERT_TRUE(Pilot::wait_for([&] { return ok->isVisible(); }));
  const QRect title = pilot_->find("Label1", "Form2")->geometry();
  EXPECT_TRUE(pilot_->find("Form2", "Form2")->rect().contains(title));
  EXPECT_FALSE(ok->geometry().intersects(title)) << "OK covers the title";
  for (const char* name : {"Label2", "Label3"}) {
    const QRect label = pilot_->find(name, "Form2")->geometry();
    EXPECT_TRUE(pilot_->find("Form2", "Form2")->rect().contains(label)) << name;
    EXPECT_FALSE(label.intersects(title)) << name;
  }
  QTest::keyClick(pilot_->find("Command3", "Form2"), Qt::Key_Return);
  EXPECT_FALSE(ok->isVisible()) << "Enter is OK";
  pilot_->click("mnumanual");
  expect_on_screen("Form4");
  expect_whole_title("Form4");
  pilot_->click("Command2", "Form4");

  pilot_->load_image(Pilot::image("3.40", 3 << 20));
  const auto* bar = pilot_->find<QProgressBar>("ProgressBar1", "Form3");
  ASSERT_TRUE(Pilot::wait_for([&] { return bar->isVisible(); }));
  expect_on_screen("Form3");
  pilot_->answer_next_box("Yes");
  pilot_->click("Command1", "Form3");
}

TEST_P(SmallScreen, the_boxes_of_a_load_are_its_windows_and_leave_the_head_in_view) {
  QFile file(pilot_->folder() + "/firmware.bin");
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(QByteArray(3 << 20, 'x').replace(80, 7, "1.00   "));
  file.close();
  pilot_->choose_next_file(file.fileName());
  pilot_->leave_boxes_alone();
  QStringList titles;
  QTimer watch;
  watch.callOnTimeout([&] {
    QWidget* box = QApplication::activeModalWidget();
    if (box == nullptr || box->objectName() != "MsgBox" || !box->isVisible()) return;
    titles += box->windowTitle();
    expect_on_screen("MsgBox");
    expect_whole_title("MsgBox");
    const QWidget* form3 = pilot_->find("Form3", "Form3");
    EXPECT_EQ(box->parentWidget(), form3);
    const QRect place(box->pos(), box->size() + frame_of_desktop);
    for (const char* name : {"Text1", "Text2", "Text3", "Text4"}) {
      const QWidget* row = pilot_->find(name, "Form3");
      const QRect head(form3->mapToGlobal(QPoint(0, row->y())),
                       QSize(form3->width(), row->height()));
      EXPECT_FALSE(place.intersects(head)) << titles.last().toStdString() << " covers " << name;
    }
    QTest::keyClick(box, Qt::Key_Return);
  });
  watch.start(20);
  pilot_->click("mnuload(2)");
  QWidget* form3 = pilot_->find("Form3", "Form3");
  EXPECT_TRUE(Pilot::wait_for([&] { return QApplication::activeWindow() == form3; }));
  EXPECT_EQ(titles.join('|'), "Application 1 File into ROM...|WARNING");
  expect_whole_title("Form3");
  QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_C, Qt::AltModifier);
  EXPECT_TRUE(Pilot::wait_for([&] { return titles.size() == 3; })) << "Alt+C doesn't ask";
  EXPECT_TRUE(Pilot::wait_for([&] { return QApplication::activeWindow() == form3; }));
  QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_Escape);
  EXPECT_TRUE(Pilot::wait_for([&] { return titles.size() == 4; })) << "Esc doesn't ask";
  EXPECT_EQ(titles.last(), "Abort file transfer...");
  EXPECT_TRUE(form3->isVisible()) << "Enter cancels the load";
}

INSTANTIATE_TEST_SUITE_P(Type, SmallScreen, ::testing::Values(1, 2));

}  // namespace
}  // namespace orvex
