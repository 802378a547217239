// Measures the tool itself, off screen, at a simulated scanner on a pseudo-terminal whose bytes
// take the time that a line gives them. Arguments name the parts to measure, all unless told; with
// --check a row that misses its limit is a failure.

#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QProgressBar>
#include <QTabWidget>
#include <cmath>
#include <functional>
#include <numeric>

#include "bench/figures.h"
#include "link/frame.h"
#include "loop/text.h"
#include "setup/apply.h"
#include "testing/pilot/pilot.h"

namespace orvex::bench {
namespace {

constexpr int runs = 5;
constexpr int runs_of_short = 21;
constexpr double bits_in_byte = 10;

double median_of(const std::function<double()>& measure, int times = runs) {
  std::vector<double> values;
  for (int run = 0; run < times; ++run) values.push_back(measure());
  return median(values);
}

double seconds_of(const std::function<void()>& work) {
  const double before = wall_seconds();
  work();
  return wall_seconds() - before;
}

std::size_t set_frame_bytes(const ScannerSetup& setup) {
  const auto tags = Setup_Tag_List(setup);
  return std::accumulate(tags.begin(), tags.end(), std::size_t{2},
                         [](std::size_t sum, const auto& tag) { return sum + tag.size(); });
}

void expect_no_error(Pilot& pilot) {
  pilot.desktop().windows.draw();
  if (!pilot.panel(2).isEmpty()) std::printf("failed: %s\n", qPrintable(pilot.panel(2)));
}

/// From the click to the end of the job, beyond the time of the frame and of its ACK on the line.
void measure_set_frames() {
  for (const int rate : {1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200}) {
    Pilot pilot({"--rate", QString::number(rate), "--paced", "--answer-delay", "0"});
    pilot.start();
    Program& program = pilot.desktop().program;
    Apply_Tag(program.setup, "<RSBAUD=" + std::to_string(rate) + ">");
    const auto on_line =
        static_cast<double>(set_frame_bytes(program.setup) + 1) * bits_in_byte / rate;
    // Below 9600 the frame alone takes longer than the ACK is waited for.
    if (on_line > 1) continue;
    const double overhead =
        median_of([&] { return seconds_of([&] { program.cmdSend_Click(); }) - on_line; });
    expect_no_error(pilot);
    print_row("set frame to ACK at " + std::to_string(rate) + " Bps, beyond its bytes",
              overhead * 1000, "ms", 2);
  }
}

void measure_receive() {
  // Before each of seven ACKs and seven replies; an ACK passes within the pause behind it.
  constexpr double pauses = 14 * 0.005;
  for (const int rate : {9600, 115200}) {
    Pilot pilot({"--rate", QString::number(rate), "--paced"});
    pilot.start();
    pilot.stop_looking();
    Program& program = pilot.desktop().program;
    program.cmdReceive_Click();
    const Form1& form1 = program.forms.form1;
    std::size_t bytes = 7 * 11 + form1.Label4.Caption.size() + form1.labWeb.Caption.size();
    for (const auto& [row, label] : form1.labRevision) bytes += label.Caption.size() - 1;
    bytes += set_frame_bytes(program.setup) - 2 + 2 * field_count + 2;
    const double least = static_cast<double>(bytes) * bits_in_byte / rate + pauses;
    const double ratio = median_of(
        [&] { return seconds_of([&] { program.cmdReceive_Click(); }) / least; }, runs_of_short);
    expect_no_error(pilot);
    print_row("receive setup at " + std::to_string(rate) + " Bps, over bytes and pauses", ratio,
              "times", 1.03);
  }
}

void measure_scan() {
  std::vector<double> off;
  for (int run = 0; run < runs; ++run) {
    Pilot pilot({"--rate", "9600"});
    pilot.tell_scanner("silent on");
    pilot.answer_next_box("Cancel");
    pilot.answer_next_box("OK");
    double begun = 0;
    double ended = 0;
    QTimer watch;
    watch.callOnTimeout([&] {
      if (begun == 0 && pilot.find("Form2", "Form2")->isVisible()) begun = wall_seconds();
      if (ended == 0 && !pilot.boxes().isEmpty()) ended = wall_seconds();
    });
    watch.start(1);
    pilot.start();
    off.push_back(std::abs(ended - begun - 4.0) / 4.0 * 100);
  }
  print_row("scan of eight silent rates, off from 4.00 s", median(off), "%", 2);
}

void measure_silent_wait() {
  Pilot pilot({"--rate", "9600"});
  pilot.start();
  pilot.tell_scanner("silent on");
  pilot.stop_looking();
  const double share = median_of([&] {
    const double before = processor_seconds();
    const double wall = seconds_of([&] { pilot.desktop().program.cmdReceive_Click(); });
    return (processor_seconds() - before) / wall * 100;
  });
  print_row("processor time in a wait for a silent scanner", share, "% of a core", 1);
}

/// From the start of the process to the first picture of its window.
double start_of(const QString& program, const QStringList& arguments) {
  QProcess process;
  const double before = wall_seconds();
  process.start(program, arguments);
  process.waitForReadyRead();
  const double seconds = wall_seconds() - before;
  process.waitForFinished();
  return seconds;
}

void measure_start() {
  Pilot scanner({"--rate", "1200"});
  const QString splash = QCoreApplication::applicationDirPath() + "/orvex-bench-start";
  std::vector<double> ratios;
  start_of(splash, {scanner.folder()});
  for (int run = 0; run < runs_of_short; ++run) {
    const double empty = start_of(splash, {});
    ratios.push_back(start_of(splash, {scanner.folder()}) / empty);
  }
  print_row("start of the process to the splash, over an empty Qt window", median(ratios), "times",
            1.5);
}

void write_image(const QString& path, int size) {
  QByteArray image(size, '\0');
  unsigned state = 1;
  for (char& byte : image) {
    state = state * 1664525U + 1013904223U;
    byte = static_cast<char>(state >> 24);
  }
  image.replace(80, 7, "9.99   ");
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly)) std::abort();
  file.write(image);
}

struct UploadCost {
  double processor = 0;  ///< seconds
  double memory = 0;     ///< KiB of the whole process, at its end
};

double memory_now() {
  QFile status("/proc/self/status");
  if (!status.open(QIODevice::ReadOnly)) return 0;
  for (const QByteArray& line : status.readAll().split('\n')) {
    if (line.startsWith("VmRSS:")) return line.mid(6).trimmed().split(' ').first().toDouble();
  }
  return 0;
}

UploadCost upload(Pilot& pilot, int mebibytes) {
  const int size = mebibytes << 20;
  const QString path = pilot.folder() + "/image.bin";
  write_image(path, size);
  pilot.choose_next_file(path);
  pilot.answer_next_box("Yes");
  const auto* bar = pilot.find<QProgressBar>("ProgressBar1", "Form3");
  pilot.click("mnuload(2)");
  pilot.stop_looking();
  UploadCost cost;
  const double before = processor_seconds();
  const bool done = Pilot::wait_for([&] { return bar->value() == size; }, 120000);
  cost.memory = memory_now();
  if (!done) std::printf("failed: the upload didn't end\n");
  cost.processor = processor_seconds() - before;
  pilot.look();
  pilot.answer_next_box("Yes");
  pilot.click("Command1", "Form3");
  Pilot::wait_for([&] {
    pilot.click("cmdReceive");
    return pilot.panel(2).isEmpty();
  });
  return cost;
}

void measure_uploads() {
  Pilot pilot({"--rate", "115200", "--start-rate", "115200"});
  pilot.start();
  print_row("processor time of an upload of 16 MiB at full speed, a MiB",
            median_of([&] { return upload(pilot, 16).processor / 16 * 1000; }), "ms", 12);
  const UploadCost small = upload(pilot, 1);
  const UploadCost large = upload(pilot, 64);
  print_row("memory of an upload of 64 MiB beyond that of 1 MiB",
            std::max(0.0, large.memory - small.memory), "KiB", 1024);
}

void measure_streams() {
  std::string frames;
  for (const auto& tag : Setup_Tag_List(ScannerSetup{})) frames += frame_of(tag);
  const auto seconds_a_mebibyte = [&](std::size_t mebibytes) {
    std::string text;
    text.reserve((mebibytes << 20) + frames.size());
    while (text.size() < mebibytes << 20) text += frames;
    return median_of([&] {
             ScannerSetup setup;
             return seconds_of([&] { Apply_Stream(setup, text, [] {}); });
           }) /
           static_cast<double>(mebibytes);
  };
  const double one = seconds_a_mebibyte(1);
  std::printf("| Apply_Stream on 1 MiB of frames | %.3g ms | | |\n", one * 1000);
  print_row("Apply_Stream a MiB, 10 MiB over 1 MiB", seconds_a_mebibyte(10) / one, "times", 1.2);
  print_row("Apply_Stream a MiB, 100 MiB over 1 MiB", seconds_a_mebibyte(100) / one, "times", 1.2);
}

void measure_drawing() {
  Pilot pilot({"--rate", "115200"});
  pilot.start();
  pilot.click("cmdReceive");
  Program& program = pilot.desktop().program;
  QWidget* window = pilot.find("Form1");
  auto* tabs = pilot.find<QTabWidget>("SSTab1");
  double most = 0;
  for (int tab = 0; tab < tabs->count(); ++tab) {
    tabs->setCurrentIndex(tab);
    Pilot::wait_for([] { return false; }, 50);
    std::size_t turn = 0;
    most = std::max(most, median_of([&] {
                      ++turn;
                      for (const Parameter& row : parameters()) {
                        if (row.is_text()) {
                          program.setup.text(row.field) = std::u16string(3, turn % 2 ? u'1' : u'2');
                        } else {
                          program.setup.choose(row.field, turn % row.choices.size());
                        }
                      }
                      for (auto& [row, label] : program.forms.form1.labRevision) {
                        label.Caption = " " + std::to_string(turn);
                      }
                      return seconds_of([&] {
                               pilot.desktop().windows.draw();
                               window->repaint();
                             }) *
                             1000;
                    }));
  }
  print_row("the window drawn after a job, the slowest tab", most, "ms", 16);
}

/// Jiffies of all processors so far, and those of them that went to other machines on the same
/// host.
struct ProcessorShare {
  double all = 0;
  double stolen = 0;
};

ProcessorShare processor_share() {
  constexpr int steal_field = 8;
  QFile file("/proc/stat");
  if (!file.open(QIODevice::ReadOnly)) return {};
  const auto fields = file.readLine().simplified().split(' ');
  ProcessorShare share;
  for (int field = 1; field <= steal_field; ++field) share.all += fields.value(field).toDouble();
  share.stolen = fields.value(steal_field).toDouble();
  return share;
}

}  // namespace
}  // namespace orvex::bench

int main(int argc, char* argv[]) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  const struct {
    const char* name;
    void (*measure)();
  } parts[]{
      {"frames", orvex::bench::measure_set_frames}, {"receive", orvex::bench::measure_receive},
      {"scan", orvex::bench::measure_scan},         {"wait", orvex::bench::measure_silent_wait},
      {"start", orvex::bench::measure_start},       {"upload", orvex::bench::measure_uploads},
      {"stream", orvex::bench::measure_streams},    {"draw", orvex::bench::measure_drawing},
  };
  const QStringList wanted = QApplication::arguments().mid(1);
  const bool all = wanted.isEmpty() || wanted == QStringList{"--check"};
  const auto before = orvex::bench::processor_share();
  std::printf("| figure | measured | limit | |\n|---|---|---|---|\n");
  for (const auto& part : parts) {
    if (all || wanted.contains(part.name)) part.measure();
  }
  const auto after = orvex::bench::processor_share();
  std::printf("| processor time that other machines on the host took meanwhile | %.1f %% | | |\n",
              (after.stolen - before.stolen) / (after.all - before.all) * 100);
  return wanted.contains("--check") && orvex::bench::missed_rows() > 0 ? 1 : 0;
}
