#include "console/port_holder.h"

#include <QLockFile>

#include "platform/linux_ports.h"

namespace orvex {

QString holder_of(const std::string& device) {
  if (platform::has_odd_lock(device)) return {};
  for (const auto& lock : platform::locks_of(device)) {
    qint64 process = 0;
    QString host;
    QString program;
    const QLockFile file(QString::fromLocal8Bit(lock.c_str()));
    if (!file.getLockInfo(&process, &host, &program)) continue;
    const QString number = "process " + QString::number(process);
    return program.isEmpty() ? number : number + " (" + program + ")";
  }
  return {};
}

}  // namespace orvex
