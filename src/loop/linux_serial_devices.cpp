#include "loop/serial_devices.h"

#include <QSerialPortInfo>

namespace orvex {

std::vector<SerialDevice> serial_devices() {
  std::vector<SerialDevice> devices;
  for (const auto& info : QSerialPortInfo::availablePorts()) {
    devices.push_back({info.systemLocation().toStdString(), info.manufacturer().toStdString(),
                       info.description().toStdString(), info.serialNumber().toStdString()});
  }
  return devices;
}

}  // namespace orvex
