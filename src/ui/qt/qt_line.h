#pragma once

#include <QObject>
#include <QSerialPort>
#include <filesystem>

#include "link/line.h"
#include "ui/qt/qt_windows.h"

namespace orvex {

/// A serial line of the machine through Qt SerialPort.
class QtLine final : public QObject, public Line {
 public:
  /// `windows` must outlive the line. `links` is the folder of the links com1, com2 and so on.
  QtLine(QtWindows& windows, std::filesystem::path links);
  ~QtLine() override;

  void listen(Listener& listener) override { listener_ = &listener; }
  void open(int com_port, const LineSettings& settings) override;
  void close() override;
  bool is_open() const override { return open_; }
  std::string device_path(int com_port) const override;
  void configure(const LineSettings& settings) override;
  void write(std::string_view bytes) override;
  std::string read() override;
  std::size_t waiting() const override;
  std::size_t unsent() const override;
  void discard_unsent() override;

 private:
  void error_occurred(QSerialPort::SerialPortError error);
  bool takes(const LineSettings& settings);
  std::size_t unsent_by_system() const;

  QtWindows& windows_;
  std::filesystem::path links_;
  QSerialPort port_;
  Listener* listener_ = nullptr;
  LineSettings settings_;  // what the open port has taken
  bool open_ = false;
  bool pseudo_terminal_ = false;
};

}  // namespace orvex
