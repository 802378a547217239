#include <gtest/gtest.h>

#include <QFile>
#include <QProgressBar>
#include <QTest>

#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

QByteArray content(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class Upload : public ::testing::Test {
 protected:
  explicit Upload()
      : pilot_(
            {"--rate", "9600", "--revision", "3.21", "--save-image", save_.filePath("saved.bin")}) {
    pilot_.start();
  }

  bool form3_up() const {
    const QWidget* form3 = pilot_.find("Form3", "Form3");
    return form3 != nullptr && form3->isVisible();
  }

  QTemporaryDir save_;
  Pilot pilot_;
};

TEST_F(Upload, an_image_arrives_byte_for_byte_and_the_new_revision_is_shown) {
  // The second load finds the mark of the fast load cleared again.
  for (const auto& [revision, port_line] :
       {std::pair{"3.30", "Settings: 115200,N,8,1  Com Port: 1"},
        {"3.40", "Settings: 9600,N,8,1  Com Port: 1"}}) {
    SCOPED_TRACE(revision);
    const QByteArray image = Pilot::image(revision, 256 * 1024);
    const QString version = QString(" ") + revision;
    pilot_.click("mnuload(5)");
    pilot_.load_image(image);
    EXPECT_EQ(pilot_.panel(1).toStdString(), port_line);
    EXPECT_EQ(pilot_.text("Text3", "Form3"), version + "   ");
    EXPECT_EQ(pilot_.dialogs().last(), "Select a BIN file|BIN Files (*.bin)");
    const auto* bar = pilot_.find<QProgressBar>("ProgressBar1", "Form3");
    ASSERT_TRUE(
        Pilot::wait_for([&] { return bar->isVisible() && bar->value() == image.size(); }, 20000));
    ASSERT_TRUE(Pilot::wait_for([&] { return content(save_.filePath("saved.bin")) == image; }))
        << "another file arrived";
    pilot_.answer_next_box("OK");
    ASSERT_TRUE(Pilot::wait_for(
        [&] { return !form3_up() && pilot_.text("labRevision(1)").startsWith(version); }, 15000));
    EXPECT_EQ(pilot_.boxes().last().toStdString(),
              "Restart: RESTART the scanner by DISCONNET and RECONNECT the power cable\n"
              "then press OK to continue");
    ASSERT_TRUE(Pilot::wait_for([&] { return pilot_.find("cmdReceive")->isEnabled(); }));
  }
}

TEST_F(Upload, a_cancel_ends_it_at_once_and_another_load_can_start) {
  pilot_.load_image(Pilot::image("3.30", 8 << 20));
  const auto* bar = pilot_.find<QProgressBar>("ProgressBar1", "Form3");
  ASSERT_TRUE(Pilot::wait_for([&] { return bar->value() > 10000; }, 20000));
  const QWidget* focus = pilot_.find("Form3", "Form3")->focusWidget();
  pilot_.answer_next_box("No");
  QTest::keyClick(pilot_.find("Form3", "Form3"), Qt::Key_Escape);
  EXPECT_EQ(pilot_.boxes().size(), 2) << "Esc asks, too";
  EXPECT_TRUE(form3_up());
  pilot_.answer_next_box("Yes");
  pilot_.click("Command1", "Form3");
  EXPECT_FALSE(form3_up());
  EXPECT_EQ(pilot_.boxes().last().toStdString(),
            "Abort file transfer...: Do you want to CANCEL the file transfer?");
  ASSERT_TRUE(Pilot::wait_for(
      [&] {
        pilot_.click("cmdReceive");
        return pilot_.panel(2).isEmpty();
      },
      15000))
      << "the scanner is not back";
  pilot_.load_image(Pilot::image("3.31", 20 * 1024));
  EXPECT_TRUE(
      Pilot::wait_for([&] { return bar->isVisible() && bar->value() == 20 * 1024; }, 20000));
  ProgressBar& record = pilot_.desktop().program.forms.form3.ProgressBar1;
  record.Max = 2147483648;  // more than the toolkit's bar takes
  record.Value = 2147483520;
  pilot_.desktop().windows.draw();
  EXPECT_LT(bar->value(), bar->maximum()) << "a part counts as the whole";
  EXPECT_EQ(pilot_.find("Form3", "Form3")->focusWidget(), focus) << "as at the first load";
}

}  // namespace
}  // namespace orvex
