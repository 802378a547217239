#include <QJsonArray>
#include <algorithm>
#include <set>

#include "console/commands.h"
#include "console/session.h"
#include "loop/serial_devices.h"
#include "platform/ports.h"

namespace orvex {
namespace {

constexpr int last_port = 6;

QJsonValue known(const std::string& text) {
  return text.empty() ? QJsonValue(QJsonValue::Null) : QJsonValue(QString::fromStdString(text));
}

/// A row of the list; port 0 is none.
QJsonObject row_of(int port, const SerialDevice& device) {
  return {{"port", port == 0 ? QJsonValue(QJsonValue::Null) : QJsonValue(port)},
          {"device", known(device.path)},
          {"manufacturer", known(device.manufacturer)},
          {"product", known(device.product)},
          {"serial", known(device.serial)}};
}

QString line_of(const QJsonObject& row) {
  const auto text = [&](const char* key) { return row[key].toString(); };
  const QString port = row["port"].isNull() ? QString("-") : QString::number(row["port"].toInt());
  if (row["device"].isNull()) return port + "  no device";
  QStringList words{port + "  " + text("device")};
  for (const char* key : {"manufacturer", "product", "serial"}) {
    if (!row[key].isNull()) words += text(key);
  }
  return words.join("  ");
}

SerialDevice device_at(const std::vector<SerialDevice>& all, const std::string& path) {
  const auto device = std::ranges::find(all, path, &SerialDevice::path);
  return device == all.end() ? SerialDevice{path, {}, {}, {}} : *device;
}

}  // namespace

Outcome run_ports(Session& session, const Options& /*options*/) {
  const auto all = serial_devices();
  QJsonArray rows;
  std::set<std::string> numbered;
  for (int port = 1; port <= last_port; ++port) {
    const auto path = platform::device_of_port(port, session.state_folder());
    rows += row_of(port, device_at(all, path));
    numbered.insert(path);
  }
  for (const auto& device : all) {
    if (!numbered.contains(device.path)) rows += row_of(0, device);
  }
  Outcome outcome{{{"ports", rows}}, {}};
  for (const auto& row : rows) outcome.lines += line_of(row.toObject());
  return outcome;
}

}  // namespace orvex
