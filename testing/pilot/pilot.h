#pragma once

#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "qt/desktop.h"
#include "testing/pilot/pilot_system.h"

namespace orvex {

/// The real program and a simulated scanner, worked by the names of the controls as a
/// user's own automation would.
class Pilot {
 public:
  /// `simulator_options` as on the simulator's command line; it is on COM `port`, 1 or 2, or 0 for
  /// none.
  explicit Pilot(const QStringList& simulator_options, int port = 1);
  /// Appends what the simulator has printed to the file ORVEX_WIRE_LOG, if the environment has it.
  ~Pilot();
  Pilot(const Pilot&) = delete;
  Pilot& operator=(const Pilot&) = delete;

  /// Runs the program's entry: returns once the main window is up, and idle.
  void start();

  /// The control `name` of the window `window`.
  template <typename Control = QWidget>
  Control* find(const QString& name, const QString& window = "Form1") const {
    QWidget* top = window_named(window);
    if (top == nullptr) return nullptr;
    if (top->objectName() == name) return qobject_cast<Control*>(top);
    return top->findChild<Control*>(name);
  }
  QString text(const QString& name, const QString& window = "Form1") const;
  /// Whether a menu item of the main window can be chosen.
  bool can_choose(const QString& name) const;
  QString panel(int number) const { return text(QString("sbrStatus.Panels(%1)").arg(number)); }

  /// Works a button, an option button or a menu item, as a click does; returns when its job is
  /// over.
  void click(const QString& name, const QString& window = "Form1");
  void type(const QString& name, const QString& keys, const QString& window = "Form1");

  /// Presses the button with this caption of the next message box that shows.
  void answer_next_box(const QString& button);
  /// Types this path into the next file dialog and accepts it.
  void choose_next_file(const QString& path);
  /// From now on boxes stand until something else takes them down.
  void leave_boxes_alone() { boxes_are_left_ = true; }
  /// Stops looking for boxes and dialogs, which takes processor time.
  void stop_looking() { looker_.stop(); }
  void look();
  /// Texts of all message boxes that were answered, oldest first.
  QStringList boxes() const { return boxes_; }

  /// The bytes of a firmware image of this revision, the same each time.
  static QByteArray image(const char* revision, int size);
  /// Writes the image into the folder, chooses it in the next file dialog and says Yes to the load.
  void load_image(const QByteArray& image);
  /// Titles and chosen filters of all file dialogs, "title|filter", oldest first.
  QStringList dialogs() const { return dialogs_; }

  /// Keeps the event loop running until the condition holds; false if it doesn't in time.
  static bool wait_for(const std::function<bool()>& condition, int most_ms = 5000);

  /// A line to the simulator's standard input.
  void tell_scanner(const QString& command);
  /// All that the simulator has printed.
  QString scanner_log();
  /// What the tool calls the device of COM `port`, while a scanner is plugged in there.
  QString device(int port = 1) const { return device_name(folder(), port); }

  QString folder() const { return folder_.path(); }
  /// Takes the tool down as the end of its process does.
  void end_tool() { desktop_.reset(); }
  /// A new tool on the same folder and scanner, not started yet.
  void restart_tool();
  Desktop& desktop() const { return *desktop_; }

 private:
  static QWidget* window_named(const QString& name);
  void look_for_dialogs();
  bool answer_box();
  bool choose_file();

  QTemporaryDir folder_;
  std::unique_ptr<ScannerProcess> scanner_;
  QByteArray scanner_log_;
  std::unique_ptr<Desktop> desktop_;
  QTimer looker_;
  QStringList answers_;
  QStringList files_;
  QStringList boxes_;
  QStringList dialogs_;
  bool boxes_are_left_ = false;
};

}  // namespace orvex
