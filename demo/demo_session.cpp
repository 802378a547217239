// Plays a session with the simulated scanner, off screen where there is a choice: scan, receive,
// change, send, receive, save, factory setup, open, a load. It prints what happens and saves
// pictures of the windows in the folder it is given. A second word is the scanner's rate; it is
// random unless told.

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QProgressBar>
#include <QRadioButton>
#include <QTabWidget>
#include <cstdio>
#include <stdexcept>

#include "loop/text.h"
#include "qt/look.h"
#include "testing/pilot/pilot.h"

namespace orvex {
namespace {

class Session {
 public:
  Session(const QString& pictures, const QString& rate)
      : pictures_(pictures), pilot_({"--rate", rate}) {
    QDir().mkpath(pictures);
  }

  void play() {
    scan();
    receive();
    save_picture("revision-numbers");
    change();
    send();
    receive();
    check();
    say("The scanner has kept the changes.");
    save_tabs();
    save();
    factory();
    open();
    show_dialogs();
    upload();
    pilot_.click("cmdExit");
    say("The tool has ended.");
  }

 private:
  static void say(const QString& line) { std::printf("%s\n", line.toLocal8Bit().constData()); }

  void scan() {
    QTimer::singleShot(200, [this] { save_picture("splash", "Form2"); });
    QElapsedTimer clock;
    clock.start();
    pilot_.start();
    say(QString("Scan: %1, after %2 s")
            .arg(pilot_.panel(1))
            .arg(static_cast<double>(clock.elapsed()) / 1000));
    if (!pilot_.find("cmdReceive")->isEnabled()) throw std::runtime_error("no scanner was found");
  }

  void receive() {
    pilot_.click("cmdReceive");
    expect_no_error();
    say(QString("Received: Application 1 %1, model %2, prefix \"%3\", baud rate %4")
            .arg(pilot_.text("labRevision(1)").trimmed(), pilot_.text("labRevision(4)").trimmed(),
                 pilot_.text("Text2"), to_qt(pilot_.desktop().program.setup.value(Field::RSBAUD))));
  }

  void change() {
    pilot_.click("Option14");
    pilot_.click("Option30");
    pilot_.find<QLineEdit>("Text2")->clear();
    pilot_.click("mnuPrefix");
    pilot_.click("cmdCtrlPre");
    save_picture("prefix-picker");
    pilot_.click("CharList(2)");
    pilot_.type("Text2", "demo");
    pilot_.click("mnuSuffix");
    pilot_.click("cmdCtrlSuf");
    save_picture("suffix-picker");
    say("Changed: baud rate 57600 Bps, Code 39 enabled, prefix \"" + pilot_.text("Text2") + "\"");
  }

  void send() {
    pilot_.click("cmdSend");
    expect_no_error();
    say("Sent: " + pilot_.panel(1));
  }

  void check() {
    const bool changed = pilot_.find<QRadioButton>("Option14")->isChecked() &&
                         pilot_.find<QRadioButton>("Option30")->isChecked() &&
                         pilot_.text("Text2") == "[STX]demo";
    if (!changed) throw std::runtime_error("the changes are not there");
  }

  void save() {
    pilot_.choose_next_file(file());
    pilot_.click("mnusave");
    if (!QFile::exists(file())) throw std::runtime_error("nothing was saved");
  }

  void factory() {
    pilot_.click("cmdFactory");
    expect_no_error();
    if (!pilot_.text("Text2").isEmpty()) throw std::runtime_error("a prefix is left");
    say("The scanner has its factory setup.");
  }

  void open() {
    pilot_.choose_next_file(file());
    pilot_.click("mnuopen");
    check();
    send();
    say("The saved setup is in the scanner again.");
  }

  QString file() const { return pilot_.folder() + "/setup \u65E5\u672C.txt"; }

  void expect_no_error() const {
    if (!pilot_.panel(2).isEmpty()) throw std::runtime_error(pilot_.panel(2).toStdString());
  }

  void save_tabs() {
    auto* tabs = pilot_.find<QTabWidget>("SSTab1");
    for (int tab = 0; tab < tabs->count(); ++tab) {
      tabs->setCurrentIndex(tab);
      save_picture(QString("tab-%1").arg(tab));
    }
  }

  void show_dialogs() {
    pilot_.click("mnuabout");
    save_picture("about", "Form2");
    pilot_.click("Command3", "Form2");
    pilot_.click("mnumanual");
    save_picture("manual-port", "Form4");
    pilot_.click("Command2", "Form4");
  }

  void upload() {
    const int size = 48 << 20;  // takes longer than the picture
    pilot_.load_image(Pilot::image("3.40", size));
    const auto* bar = pilot_.find<QProgressBar>("ProgressBar1", "Form3");
    Pilot::wait_for([&] { return bar->value() > size / 3; });
    save_picture("upload", "Form3");
    say(QString("Uploaded %1 of %2 bytes, then cancelled").arg(bar->value()).arg(bar->maximum()));
    pilot_.answer_next_box("Yes");
    pilot_.click("Command1", "Form3");
    const bool heard =
        Pilot::wait_for([&] { return pilot_.scanner_log().contains("load failed"); });
    if (!heard) throw std::runtime_error("the scanner didn't hear the cancel");
  }

  void save_picture(const QString& name, const QString& window = "Form1") {
    const QString path = QDir(pictures_).absoluteFilePath(name + ".png");
    pilot_.desktop().windows.draw();
    Pilot::wait_for([] { return false; }, 50);
    if (!pilot_.find(window, window)->grab().save(path)) {
      throw std::runtime_error("can't write " + path.toStdString());
    }
    say("Picture: " + path);
  }

  QString pictures_;
  Pilot pilot_;
};

}  // namespace
}  // namespace orvex

int main(int argc, char* argv[]) {
  orvex::choose_screen();
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  orvex::set_look();
  try {
    orvex::Session(argc > 1 ? argv[1] : "screenshots", argc > 2 ? argv[2] : "random").play();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "The session failed: %s\n", error.what());
    return 1;
  }
  return 0;
}
