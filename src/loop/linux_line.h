#pragma once

#include <QObject>
#include <QSerialPort>
#include <filesystem>
#include <string>

#include "link/line.h"
#include "loop/event_loop.h"

namespace orvex {

/// A serial line of the machine through Qt SerialPort.
class LinuxLine final : public QObject, public Line {
 public:
  /// `loop` must outlive the line. `links` is the folder of the links com1, com2 and so on; unless
  /// it is empty, `device` stands for every port in their place.
  LinuxLine(EventLoop& loop, std::filesystem::path links, std::string device = {});
  ~LinuxLine() override;

  void listen(Listener& listener) override { listener_ = &listener; }
  void open(int com_port, const LineSettings& settings) override;
  void close() override;
  bool is_open() const override { return open_; }
  std::string device_path(int com_port) const override;
  Time configure(const LineSettings& settings) override;
  void write(std::string_view bytes) override;
  std::string read() override;
  std::size_t waiting() const override;
  std::size_t unsent() const override;
  void discard_unsent() override;

 private:
  void error_occurred(QSerialPort::SerialPortError error);
  bool takes(const LineSettings& settings);
  QString cause_of_refusal(const std::string& path) const;
  std::size_t unsent_by_system() const;

  EventLoop& loop_;
  std::filesystem::path links_;
  std::string device_;
  QSerialPort port_;
  Listener* listener_ = nullptr;
  LineSettings settings_;  // what the open port has taken
  bool open_ = false;
  bool pseudo_terminal_ = false;
};

}  // namespace orvex
