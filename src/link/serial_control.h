#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/timer.h"
#include "link/file_transfer.h"
#include "link/line.h"

namespace orvex {

/// The serial control `MSComm1`: the properties and events of one COM port, and a file transfer.
/// A failure of a property access is thrown as RunTimeError.
class SerialControl final : public Line::Listener, public Scheduled {
 public:
  /// `clock` and `line` must outlive the control.
  SerialControl(const Clock& clock, Line& line, EngineFactory make_engine);

  /// Raised inside a pump once RThreshold characters wait.
  std::function<void()> Receive;
  /// Raised inside a pump as a transfer goes on, with what is done so far in the unit of FileTotal.
  std::function<void(std::int32_t)> FileProgress;
  /// Raised inside a pump once the device of the open port has gone away, with the cause in a few
  /// words; the port is closed.
  std::function<void(std::string_view why)> Lost;

  int CommPort() const { return comm_port_; }
  /// 1 to 6, else a failure. An open port stays where it is until it is opened again.
  void CommPort(int number);

  const std::string& Settings() const { return settings_; }
  /// Takes effect on an open port at once. Reads back without blanks around the fields. Gives how
  /// long the line waited for another machine.
  Time Settings(std::string_view text);

  bool PortOpen() const { return line_.is_open(); }
  /// The text of a failure to open is its cause in a few words, which about_port() completes.
  void PortOpen(bool open);
  /// Path of the device that a port stands for, empty if the machine has no such port.
  std::string device_path(int com_port) const { return line_.device_path(com_port); }
  /// The device that was opened last or should have been; empty if there was none.
  const std::string& device() const { return device_; }
  /// What is to be said of that: "COM 1, /dev/ttyUSB0: no such device".
  std::string about_port(std::string_view what) const;

  void Output(std::string_view text);
  /// All that has come and was not read yet.
  std::string Input();
  /// Characters that one Input gives; 0 means all, and nothing else is supported.
  void InputLen(int characters);
  /// Bytes of Output that have not left the machine, as far as it knows.
  std::size_t OutBufferCount() const { return line_.unsent(); }

  int RThreshold() const { return receive_threshold_; }
  void RThreshold(int characters) { receive_threshold_ = characters; }
  int SThreshold() const { return send_threshold_; }
  void SThreshold(int characters) { send_threshold_ = characters; }

  /// 5 is ZMODEM, sender's side; 0 is none.
  void Protocol(int protocol) { protocol_ = protocol; }
  void FileName(std::filesystem::path path) { file_name_ = std::move(path); }
  // Named by the control's callers, and without effect on this line.
  void InputMode(int /*mode*/) {}
  void ComType(int /*type*/) {}

  bool FileSendOn() const { return transfer_.is_on(); }
  /// True starts the transfer of FileName and returns at once. False stops it: what is queued is
  /// thrown away, the cancel sequence goes out and FileBusy is false on return.
  void FileSendOn(bool on);
  /// A receive is never started, so this reads false always.
  bool FileRecvOn() const { return false; }
  bool FileBusy() const { return transfer_.is_on(); }
  /// As FileTransfer::total().
  std::int32_t FileTotal() const { return transfer_.total(); }
  /// As FileTransfer::reason().
  const std::string& FileReason() const { return transfer_.reason(); }

  void bytes_arrived() override;
  void bytes_sent() override;
  void line_lost(std::string_view why) override;
  std::optional<Time> due() const override { return transfer_.due(); }
  void run() override { transfer_.run(); }

 private:
  void require_open() const;

  Line& line_;
  FileTransfer transfer_;
  int comm_port_ = 1;
  std::string device_;
  std::string settings_ = "9600,N,8,1";
  int receive_threshold_ = 1;
  int send_threshold_ = 1;
  int protocol_ = 0;
  std::filesystem::path file_name_;
};

}  // namespace orvex
