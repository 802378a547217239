#include <gtest/gtest.h>

#include <QFile>
#include <QLineEdit>
#include <QProgressBar>
#include <QTest>
#include <random>

#include "demo/pilot.h"

namespace orvex {
namespace {

constexpr int head_size = 108;

enum class Body { random, firmware_like };

/// Firmware has long runs of one byte and words that come again and again.
QByteArray make_image(const char* version, int size, Body body = Body::random) {
  QByteArray image(size, '\0');
  std::mt19937 random(7);
  for (int place = 0; place < size; ++place) {
    if (body == Body::random || place % 64 < 24) image[place] = static_cast<char>(random());
  }
  image.replace(0, head_size, QByteArray(head_size, ' '));
  image.replace(48, 8, QByteArray::number(size).leftJustified(8));
  image.replace(64, 4, "1A2B");
  image.replace(80, 7, QByteArray(version).leftJustified(7));
  image.replace(96, 11, "22 Nov 2026");
  return image;
}

QByteArray content(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class Upload : public testing::Test {
 protected:
  explicit Upload()
      : pilot_(
            {"--rate", "9600", "--revision", "3.21", "--save-image", save_.filePath("saved.bin")}) {
    pilot_.start();
  }

  void choose(const QByteArray& image) {
    QFile file(save_.filePath("image.bin"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(image);
    file.close();
    pilot_.choose_next_file(file.fileName());
    pilot_.answer_next_box("Yes");
  }

  bool form3_up() const {
    const QWidget* form3 = pilot_.find("Form3", "Form3");
    return form3 != nullptr && form3->isVisible();
  }

  QTemporaryDir save_;
  Pilot pilot_;
};

TEST_F(Upload, an_image_arrives_byte_for_byte_and_the_new_revision_is_shown) {
  struct Load {
    const char* version;
    Body body;
    const char* port_line;
  };
  // The second load finds the mark of the fast load cleared again.
  for (const Load& load :
       {Load{"3.30", Body::random, "Settings: 115200,N,8,1  Com Port: 1"},
        Load{"3.40", Body::firmware_like, "Settings: 9600,N,8,1  Com Port: 1"}}) {
    SCOPED_TRACE(load.version);
    const QByteArray image = make_image(load.version, 256 * 1024, load.body);
    const QString version = QString(" ") + load.version;
    choose(image);
    pilot_.click("mnuload(5)");
    pilot_.click("mnuload(2)");
    EXPECT_EQ(pilot_.panel(1).toStdString(), load.port_line);
    EXPECT_EQ(pilot_.text("Text3", "Form3"), version + "   ");
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
  choose(make_image("3.30", 8 * 1024 * 1024));
  pilot_.click("mnuload(2)");
  const auto* bar = pilot_.find<QProgressBar>("ProgressBar1", "Form3");
  ASSERT_TRUE(Pilot::wait_for([&] { return bar->value() > 10000; }, 20000));
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
  choose(make_image("3.31", 20 * 1024));
  pilot_.click("mnuload(2)");
  EXPECT_TRUE(
      Pilot::wait_for([&] { return bar->isVisible() && bar->value() == 20 * 1024; }, 20000));
}

}  // namespace
}  // namespace orvex
