#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProgressBar>
#include <functional>

#include "demo/pilot.h"

namespace orvex {
namespace {

/// The three ways out.
const std::function<void(Desktop&)> ways_out[]{
    [](Desktop& desktop) { desktop.windows.handle([&] { desktop.program.cmdExit_Click(); }); },
    [](Desktop& desktop) { desktop.windows.handle([&] { desktop.program.mnuexit_Click(); }); },
    [](Desktop& desktop) { desktop.main_window->close(); },
};

struct Moment {
  const char* name;
  bool with_scanner;
  /// Brings the tool there; the exit comes from inside of it, once `there` holds.
  std::function<void(Pilot&)> go;
  std::function<bool(Pilot&)> there;
};

void start_upload(Pilot& pilot) {
  QByteArray image(4 << 20, '1');
  image.replace(80, 7, "9.99   ");
  QFile file(pilot.folder() + "/image.bin");
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(image);
  file.close();
  pilot.choose_next_file(file.fileName());
  pilot.answer_next_box("Yes");
  pilot.click("mnuload(2)");
}

bool uploading(Pilot& pilot) {
  return pilot.find<QProgressBar>("ProgressBar1", "Form3")->value() > 1000;
}

bool modal(const char* name) {
  const QWidget* window = QApplication::activeModalWidget();
  return window != nullptr && window->objectName() == name;
}

void start_and_silence(Pilot& pilot) {
  pilot.start();
  pilot.tell_scanner("silent on");
}

const Moment moments[]{
    {"a scan", true,
     [](Pilot& pilot) {
       pilot.tell_scanner("silent on");
       pilot.start();
     },
     [](Pilot& pilot) { return pilot.text("Label3", "Form2") == " 19200"; }},
    {"an exchange", true,
     [](Pilot& pilot) {
       start_and_silence(pilot);
       pilot.click("cmdReceive");
     },
     [](Pilot& pilot) {
       return pilot.panel(2) == "TIME OUT COUNT = 0" && !pilot.find("cmdSend")->isEnabled();
     }},
    {"a message box", false,
     [](Pilot& pilot) {
       QFile::link("/nowhere", pilot.folder() + "/com1");
       pilot.leave_boxes_alone();
       pilot.start();
     },
     [](Pilot&) { return modal("MsgBox"); }},
    {"a file dialog", true,
     [](Pilot& pilot) {
       pilot.start();
       pilot.click("mnuopen");
     },
     [](Pilot&) { return modal("CommonDialog1"); }},
    {"the manual dialog", true,
     [](Pilot& pilot) {
       start_and_silence(pilot);
       pilot.click("mnumanual");
       pilot.click("Command1", "Form4");
     },
     [](Pilot& pilot) { return !pilot.find("cmdWeb")->isEnabled(); }},
    {"an upload", true,
     [](Pilot& pilot) {
       pilot.start();
       start_upload(pilot);
       Pilot::wait_for([&] { return pilot.desktop().windows.ended(); });
     },
     uploading},
    {"the box of a cancelled upload", true,
     [](Pilot& pilot) {
       pilot.start();
       start_upload(pilot);
       Pilot::wait_for([&] { return uploading(pilot); });
       pilot.leave_boxes_alone();
       pilot.click("Command1", "Form3");
     },
     [](Pilot& pilot) { return uploading(pilot) && modal("MsgBox"); }},
};

TEST(Exit, leaves_no_process_and_no_open_port_at_any_moment) {
  for (const Moment& moment : moments) {
    for (const auto& leave : ways_out) {
      SCOPED_TRACE(moment.name);
      QElapsedTimer clock;
      {
        Pilot pilot({"--rate", "9600"}, moment.with_scanner);
        QTimer watch;
        watch.callOnTimeout([&] {
          if (pilot.find("Form1") == nullptr || clock.isValid() || !moment.there(pilot)) return;
          clock.start();
          leave(pilot.desktop());
        });
        watch.start(5);
        moment.go(pilot);
        ASSERT_TRUE(clock.isValid()) << "the moment never came";
        EXPECT_TRUE(pilot.desktop().windows.ended());
        EXPECT_EQ(pilot.desktop().run(), 0);
        pilot.end_tool();
        EXPECT_LT(clock.elapsed(), 1000);
      }
    }
  }
}

}  // namespace
}  // namespace orvex
