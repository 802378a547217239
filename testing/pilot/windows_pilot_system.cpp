#include <windows.h>
// After windows.h.
#include <QSettings>
#include <QTcpSocket>
#include <stdexcept>

#include "testing/pilot/pilot.h"
#include "testing/pilot/pilot_system.h"

namespace orvex {
namespace {

constexpr int most_ms = 5000;

/// A file's path as the simulator's system has it.
QString outside(const QString& path) {
  return path.startsWith("Z:/") ? path.mid(2) : path;
}

/// The simulator runs on the system around Wine, which has the other end of the port. A server
/// there starts one for each connection: the port goes first, then the options, a line each and an
/// empty one behind them.
class WindowsScanner final : public ScannerProcess {
 public:
  WindowsScanner(const QStringList& options, int port) {
    socket_.connectToHost("127.0.0.1",
                          static_cast<quint16>(qEnvironmentVariableIntValue("ORVEX_SCANNERS")));
    if (!socket_.waitForConnected(most_ms)) throw std::runtime_error("no server of scanners");
    tell(QString::number(port));
    for (const QString& option : options) tell(outside(option));
    tell({});
    // It says where it is.
    if (!Pilot::wait_for([&] { return socket_.canReadLine(); })) {
      throw std::runtime_error("the simulator didn't start");
    }
  }
  ~WindowsScanner() override {
    // The server closes the connection once the simulator has gone.
    tell("quit");
    socket_.waitForDisconnected(most_ms);
  }

  void tell(const QString& command) override {
    socket_.write(command.toUtf8() + '\n');
    socket_.waitForBytesWritten();
  }
  QByteArray printed() override { return socket_.readAll(); }

 private:
  QTcpSocket socket_;
};

}  // namespace

std::unique_ptr<ScannerProcess> start_scanner(const QStringList& options, const QString& /*folder*/,
                                              int port) {
  return std::make_unique<WindowsScanner>(options, port);
}

QString device_name(const QString& /*folder*/, int port) {
  return "COM" + QString::number(port);
}

QStringList kept_settings() {
  const QSettings settings(QSettings::UserScope, "QtProject");
  return settings.allKeys() + settings.childGroups();
}

double processor_seconds() {
  FILETIME begun{}, ended{}, kernel{}, user{};
  ::GetProcessTimes(::GetCurrentProcess(), &begun, &ended, &kernel, &user);
  constexpr double ticks_in_second = 1e7;
  const auto ticks = [](const FILETIME& time) {
    return (static_cast<unsigned long long>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
  };
  return static_cast<double>(ticks(kernel) + ticks(user)) / ticks_in_second;
}

void choose_screen() {}

}  // namespace orvex
