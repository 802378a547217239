// The program in the middle of something: it is left there, and the device goes away there.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProgressBar>
#include <cstdio>
#include <functional>

#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

/// What the user meets whose device goes away: answers to boxes, all boxes, and panel 2.
struct Loss {
  QStringList answers;
  QStringList boxes;
  const char* panel_2;
};

struct Moment {
  const char* name;
  /// Brings the tool there; what befalls it comes from inside of it, once `there` holds.
  std::function<void(Pilot&)> go;
  std::function<bool(Pilot&)> there;
  std::optional<Loss> loss = {};
  int port = 1;  ///< of the scanner
};

bool is_over(Pilot& pilot) {
  return pilot.desktop().windows.ended() || !pilot.desktop().line.is_open();
}

void start_upload(Pilot& pilot) {
  pilot.start();
  pilot.load_image(Pilot::image("9.99", 4 << 20));
}

bool uploading(Pilot& pilot) {
  return pilot.find<QProgressBar>("ProgressBar1", "Form3")->value() > 1000;
}

bool modal(const char* name) {
  const QWidget* window = QApplication::activeModalWidget();
  return window != nullptr && window->objectName() == name;
}

bool job_runs(Pilot& pilot) {
  return !pilot.desktop().program.forms.form1.cmdWeb.Enabled;
}

void start_and_silence(Pilot& pilot) {
  pilot.start();
  pilot.tell_scanner("silent on");
}

const QString not_open = "Orvex1: The port is not open";

const Moment moments[]{
    {"nothing",
     [](Pilot& pilot) {
       pilot.start();
       Pilot::wait_for([&] { return is_over(pilot); });
     },
     [](Pilot& pilot) {
       const Form1& form1 = pilot.desktop().program.forms.form1;
       return form1.Visible && !form1.Timer1.Enabled() && !pilot.panel(2).isEmpty();
     },
     Loss{{}, {}, "TIME OUT COUNT = 0"}},
    {"a scan",
     [](Pilot& pilot) {
       pilot.tell_scanner("silent on");
       pilot.start();
     },
     [](Pilot& pilot) { return pilot.text("Label3", "Form2") == " 19200"; },
     Loss{{"Cancel", "OK"}, {"Orvex1: Connection Failed", not_open}, ""}},
    {"an exchange",
     [](Pilot& pilot) {
       start_and_silence(pilot);
       pilot.click("cmdReceive");
     },
     job_runs, Loss{{"OK"}, {not_open}, "Error in Receiving"}},
    {"the manual dialog",
     [](Pilot& pilot) {
       start_and_silence(pilot);
       pilot.click("mnumanual");
       pilot.click("Command1", "Form4");
     },
     job_runs, Loss{{}, {}, "TIME OUT COUNT = 0"}},
    {"an upload",
     [](Pilot& pilot) {
       start_upload(pilot);
       Pilot::wait_for([&] { return is_over(pilot); });
     },
     uploading, Loss{{}, {"Application 1 File into ROM...: Do You Want to Update the ROM?"}, ""}},
    {"the box of a cancelled upload",
     [](Pilot& pilot) {
       start_upload(pilot);
       Pilot::wait_for([&] { return uploading(pilot); });
       pilot.leave_boxes_alone();
       pilot.click("Command1", "Form3");
     },
     [](Pilot& pilot) { return uploading(pilot) && modal("MsgBox"); }},
    {"a file dialog",
     [](Pilot& pilot) {
       pilot.start();
       pilot.click("mnuopen");
     },
     [](Pilot&) { return modal("CommonDialog1"); }},
    {"a message box",
     [](Pilot& pilot) {
       QFile::link("/nowhere", pilot.folder() + "/com1");
       pilot.leave_boxes_alone();
       pilot.start();
     },
     [](Pilot&) { return modal("MsgBox"); },
     {},
     0},
};

/// Goes to the moment and lets something happen there, once.
void go_and_let(Pilot& pilot, const Moment& moment, const std::function<void()>& happen) {
  bool happened = false;
  QTimer watch;
  watch.callOnTimeout([&] {
    if (happened || pilot.find("Form1") == nullptr || !moment.there(pilot)) return;
    happened = true;
    happen();
  });
  watch.start(5);
  moment.go(pilot);
  ASSERT_TRUE(happened) << "the moment never came";
}

TEST(Moments, an_exit_leaves_no_process_and_no_open_port) {
  const std::function<void(Desktop&)> ways_out[]{
      [](Desktop& desktop) { desktop.windows.handle([&] { desktop.program.cmdExit_Click(); }); },
      [](Desktop& desktop) { desktop.windows.handle([&] { desktop.program.mnuexit_Click(); }); },
      [](Desktop& desktop) { desktop.main_window->close(); },
  };
  for (const Moment& moment : moments) {
    for (const auto& leave : ways_out) {
      SCOPED_TRACE(moment.name);
      QElapsedTimer clock;
      Pilot pilot({"--rate", "9600"}, moment.port);
      go_and_let(pilot, moment, [&] {
        clock.start();
        leave(pilot.desktop());
      });
      EXPECT_TRUE(pilot.desktop().windows.ended());
      EXPECT_EQ(pilot.desktop().run(), 0);
      pilot.end_tool();
      EXPECT_LT(clock.elapsed(), 1000);
    }
  }
}

TEST(Moments, a_device_that_goes_is_one_failure_and_a_new_one_is_found_without_a_restart) {
  for (const Moment& moment : moments) {
    if (!moment.loss) continue;
    SCOPED_TRACE(moment.name);
    Pilot pilot({"--rate", "9600"});
    for (const QString& answer : moment.loss->answers) pilot.answer_next_box(answer);
    const QString device = pilot.device();
    go_and_let(pilot, moment, [&] { pilot.tell_scanner("unplug"); });
    EXPECT_FALSE(pilot.desktop().line.is_open());
    EXPECT_EQ(pilot.find("sbrStatus.Panels(1)")->toolTip(), "COM 1, " + device + ": unplugged");
    EXPECT_EQ(pilot.boxes().join('|').toStdString(), moment.loss->boxes.join('|').toStdString());
    EXPECT_EQ(pilot.panel(2).toStdString(), moment.loss->panel_2);

    pilot.stop_looking();
    const double before = processor_seconds();
    Pilot::wait_for([] { return false; }, 1000);
    const double share = processor_seconds() - before;
    std::printf("%-18s %.1f %% of a core afterwards\n", moment.name, 100 * share);
    EXPECT_LT(share, 0.1);

    pilot.look();
    pilot.tell_scanner("silent off");
    pilot.tell_scanner("plug");
    ASSERT_TRUE(Pilot::wait_for([&] { return pilot.scanner_log().contains("plugged in at"); }));
    pilot.click("mnuauto");
    pilot.click("cmdReceive");
    EXPECT_EQ(pilot.panel(1).toStdString(), "Settings: 9600,N,8,1  Com Port: 1");
    EXPECT_EQ(pilot.panel(2).toStdString(), "");
    EXPECT_EQ(pilot.boxes().size(), moment.loss->boxes.size());
  }
}

}  // namespace
}  // namespace orvex
