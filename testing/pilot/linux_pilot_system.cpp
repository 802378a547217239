#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <ctime>
#include <stdexcept>

#include "testing/pilot/pilot.h"
#include "testing/pilot/pilot_system.h"

namespace orvex {
namespace {

QString link_of(const QString& folder, int port) {
  return folder + "/com" + QString::number(port);
}

class LinuxScanner final : public ScannerProcess {
 public:
  LinuxScanner(const QStringList& options, const QString& link) {
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.start(ORVEX_SIMULATOR, options + QStringList{link});
    if (!Pilot::wait_for([&] { return QFileInfo(link).isSymLink(); })) {
      throw std::runtime_error("the simulator didn't start");
    }
  }
  ~LinuxScanner() override {
    process_.closeWriteChannel();
    process_.terminate();
    process_.waitForFinished();
  }

  void tell(const QString& command) override {
    process_.write(command.toLocal8Bit() + '\n');
    process_.waitForBytesWritten();
  }
  QByteArray printed() override { return process_.readAll(); }

 private:
  QProcess process_;
};

}  // namespace

std::unique_ptr<ScannerProcess> start_scanner(const QStringList& options, const QString& folder,
                                              int port) {
  // Without a link it would be a port of the machine.
  if (port != 1) QFile::link("/nowhere", link_of(folder, 1));
  return std::make_unique<LinuxScanner>(options, link_of(folder, port));
}

QString device_name(const QString& folder, int port) {
  return QFileInfo(link_of(folder, port)).symLinkTarget();
}

QStringList kept_settings() {
  return QDir(qEnvironmentVariable("XDG_CONFIG_HOME"))
      .entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
}

double processor_seconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

void choose_screen() {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
}

}  // namespace orvex
