#include <gtest/gtest.h>

#include <QFile>
#include <QProgressBar>
#include <cstdio>
#include <ctime>
#include <functional>

#include "demo/pilot.h"

namespace orvex {
namespace {

struct Phase {
  const char* name;
  bool from_start;  ///< before the tool is up, else once it is idle
  /// Works the tool until the phase is over; the scanner goes once `under_way` holds.
  std::function<void(Pilot&)> work;
  std::function<bool(Pilot&)> under_way;
  QStringList answers;
  QStringList boxes;  ///< all that show until the phase is over
  const char* panel_2;
};

bool line_is_closed(const Pilot& pilot) {
  return !pilot.desktop().line.is_open();
}

void wait_for_the_end_of_the_line(Pilot& pilot) {
  EXPECT_TRUE(Pilot::wait_for([&] { return line_is_closed(pilot); }));
}

std::function<void(Pilot&)> job(const char* button) {
  return [button](Pilot& pilot) { pilot.click(button); };
}

bool job_runs(Pilot& pilot) {
  return !pilot.find("cmdWeb")->isEnabled();
}

void open_port_by_hand(Pilot& pilot) {
  pilot.click("mnumanual");
  pilot.click("Command1", "Form4");
}

void load_firmware(Pilot& pilot) {
  pilot.tell_scanner("silent off");
  QFile file(pilot.folder() + "/image.bin");
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(QByteArray(4 << 20, '1').replace(80, 7, "9.99   "));
  file.close();
  pilot.choose_next_file(file.fileName());
  pilot.click("mnuload(2)");
  wait_for_the_end_of_the_line(pilot);
}

const QString not_open = "Orvex1: The port is not open";

const Phase phases[]{
    {"idle",
     false,
     wait_for_the_end_of_the_line,
     [](Pilot&) { return true; },
     {},
     {},
     "TIME OUT COUNT = 0"},
    {"scan",
     true,
     [](Pilot& pilot) { pilot.start(); },
     [](Pilot& pilot) { return pilot.text("Label3", "Form2") == " 19200"; },
     {"Cancel", "OK"},
     {"Orvex1: Connection Failed", not_open},
     ""},
    {"receive", false, job("cmdReceive"), job_runs, {"OK"}, {not_open}, "Error in Receiving"},
    {"send", false, job("cmdSend"), job_runs, {"OK"}, {not_open}, "Error in Sending"},
    {"factory",
     false,
     job("cmdFactory"),
     job_runs,
     {"OK"},
     {not_open},
     "Error in Sending Defaults"},
    {"manual", false, open_port_by_hand, job_runs, {}, {}, "TIME OUT COUNT = 0"},
    {"upload",
     false,
     load_firmware,
     [](Pilot& pilot) { return pilot.find<QProgressBar>("ProgressBar1", "Form3")->value() > 1000; },
     {"Yes"},
     {"Application 1 File into ROM...: Do You Want to Update the ROM?"},
     ""},
};

class Unplug : public testing::TestWithParam<Phase> {};

TEST_P(Unplug, is_one_failure_and_a_new_device_is_found_without_a_restart) {
  const Phase& phase = GetParam();
  Pilot pilot({"--rate", "9600"});
  for (const QString& answer : phase.answers) pilot.answer_next_box(answer);
  if (!phase.from_start) pilot.start();
  pilot.tell_scanner("silent on");
  bool gone = false;
  QTimer watch;
  watch.callOnTimeout([&] {
    if (gone || pilot.find("Form1") == nullptr || !phase.under_way(pilot)) return;
    gone = true;
    pilot.tell_scanner("unplug");
  });
  watch.start(5);
  phase.work(pilot);
  watch.stop();
  ASSERT_TRUE(gone);
  EXPECT_TRUE(line_is_closed(pilot));
  EXPECT_EQ(pilot.boxes().join('|').toStdString(), phase.boxes.join('|').toStdString());
  EXPECT_EQ(pilot.panel(2).toStdString(), phase.panel_2);

  pilot.stop_looking();
  const std::clock_t before = std::clock();
  Pilot::wait_for([] { return false; }, 1000);
  const double share = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
  std::printf("%-8s %.1f %% of a core afterwards\n", phase.name, 100 * share);
  EXPECT_LT(share, 0.05);

  pilot.look();
  const auto boxes = pilot.boxes().size();
  pilot.tell_scanner("silent off");
  pilot.tell_scanner("plug");
  ASSERT_TRUE(Pilot::wait_for([&] { return QFile::exists(pilot.folder() + "/com1"); }));
  pilot.click("mnuauto");
  pilot.click("cmdReceive");
  EXPECT_EQ(pilot.panel(1).toStdString(), "Settings: 9600,N,8,1  Com Port: 1");
  EXPECT_EQ(pilot.panel(2).toStdString(), "");
  EXPECT_EQ(pilot.boxes().size(), boxes);
}

INSTANTIATE_TEST_SUITE_P(InEachPhase, Unplug, testing::ValuesIn(phases),
                         [](const auto& phase) { return phase.param.name; });

}  // namespace
}  // namespace orvex
