#include "console/port_holder.h"

#include <QLockFile>
#include <QStringList>

#include "platform/linux_ports.h"

namespace orvex {

QString holder_of(const std::string& device) {
  if (platform::has_odd_lock(device)) return {};
  // Where serial ports are locked by custom, the first of them that is there being used.
  static const QStringList folders{"/var/lock", "/etc/locks", "/var/spool/locks", "/var/spool/uucp",
                                   "/tmp",      "/var/tmp",   "/run/lock"};
  QString name = QString::fromLocal8Bit(device.c_str());
  if (name.startsWith("/dev/")) name.remove(0, 5);
  name.replace('/', '_');
  for (const QString& folder : folders) {
    qint64 process = 0;
    QString host;
    QString program;
    if (!QLockFile(folder + "/LCK.." + name).getLockInfo(&process, &host, &program)) continue;
    const QString number = "process " + QString::number(process);
    return program.isEmpty() ? number : number + " (" + program + ")";
  }
  return {};
}

}  // namespace orvex
