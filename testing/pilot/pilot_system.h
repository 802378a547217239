#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <memory>

/// What differs between the systems the pilot works on: one source file for each of them.
namespace orvex {

/// The simulated scanner as a process. It ends when this is destroyed.
class ScannerProcess {
 public:
  ScannerProcess() = default;
  virtual ~ScannerProcess() = default;
  ScannerProcess(const ScannerProcess&) = delete;
  ScannerProcess& operator=(const ScannerProcess&) = delete;

  /// A line to its standard input.
  virtual void tell(const QString& command) = 0;
  /// What it has printed since the last call.
  virtual QByteArray printed() = 0;
};

/// `options` as on the simulator's command line; it is on COM `port`, 1 or 2, of a tool whose state
/// folder is `folder`. Throws std::runtime_error unless it is there within 5 s.
std::unique_ptr<ScannerProcess> start_scanner(const QStringList& options, const QString& folder,
                                              int port);

/// What the tool calls the device of COM `port` while the scanner is plugged in.
QString device_name(const QString& folder, int port);

/// Keys and groups that the toolkit has written among the user's settings.
QStringList kept_settings();

/// Processor time that this process has taken.
double processor_seconds();

/// Picks the screen that windows come up on, unless the environment does. Before a QApplication.
void choose_screen();

}  // namespace orvex
