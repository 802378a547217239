#include "loop/linux_line.h"

#include <utility>

#include "base/run_time_error.h"
#include "loop/local_line.h"
#include "loop/text.h"
#include "platform/linux_ports.h"
#include "platform/ports.h"

namespace orvex {
namespace {

RunTimeError not_available(const QString& cause) {
  return {error_number::device_error, cause.toLocal8Bit().toStdString()};
}

RunTimeError refused(const QString& reason) {
  return not_available("The port is not available: " + reason);
}

QSerialPort::Parity parity_of(Parity parity) {
  switch (parity) {
    case Parity::odd:
      return QSerialPort::OddParity;
    case Parity::even:
      return QSerialPort::EvenParity;
    case Parity::none:
      break;
  }
  return QSerialPort::NoParity;
}

}  // namespace

LinuxLine::LinuxLine(EventLoop& loop, std::filesystem::path links, std::string device)
    : loop_(loop), links_(std::move(links)), device_(std::move(device)) {
  port_.setReadBufferSize(in_buffer_size);
  connect(&port_, &QSerialPort::readyRead, this, [this] {
    loop_.handle_line([this] {
      if (open_) listener_->bytes_arrived();
    });
  });
  connect(&port_, &QSerialPort::bytesWritten, this, [this] {
    loop_.handle_line([this] {
      if (open_) listener_->bytes_sent();
    });
  });
  connect(&port_, &QSerialPort::errorOccurred, this, &LinuxLine::error_occurred);
}

LinuxLine::~LinuxLine() {
  close();
}

void LinuxLine::open(int com_port, const LineSettings& settings) {
  close();
  const std::string path = device_path(com_port);
  const auto kind = platform::kind_of_device(path);
  if (platform::is_foreign_network_link(path)) {
    throw not_available("the link to the network belongs to another user");
  }
  if (kind == platform::DeviceKind::none) throw not_available("no such device");
  if (platform::has_odd_lock(path)) {
    throw not_available("held by another program: its lock is no file of at most 1 KiB");
  }
  pseudo_terminal_ = kind == platform::DeviceKind::pseudo_terminal;
  // The lock goes by the name, so it has to be the device's own and not that of a link.
  port_.setPortName(QString::fromLocal8Bit(path.c_str()));
  if (!port_.open(QIODevice::ReadWrite)) throw not_available(cause_of_refusal(path));
  if (!platform::is_trusted_port(static_cast<std::intptr_t>(port_.handle()))) {
    port_.close();
    throw not_available("the pseudo-terminal belongs to another user");
  }
  open_ = true;
  try {
    if (!takes(settings)) throw not_available(port_.errorString());
    settings_ = settings;
    // A pseudo-terminal has neither line; a port that has them raises them here.
    port_.setDataTerminalReady(true);
    port_.setRequestToSend(true);
    port_.clear(QSerialPort::AllDirections);
  } catch (const RunTimeError&) {
    close();
    throw;
  }
  if (!open_) throw not_available("unplugged");
}

QString LinuxLine::cause_of_refusal(const std::string& path) const {
  const std::string right = platform::missing_right(path);
  if (!right.empty()) return to_qt(right);
  switch (port_.error()) {
    case QSerialPort::DeviceNotFoundError:
      return "no such device";
    case QSerialPort::PermissionError:  // with all rights: its lock or the system says so
      return "held by another program";
    default:
      return port_.errorString();
  }
}

void LinuxLine::close() {
  if (!port_.isOpen()) return;
  open_ = false;
  // What the line no longer takes would hold the close up.
  if (unsent() > 0) port_.clear(QSerialPort::Output);
  port_.close();
}

std::string LinuxLine::device_path(int com_port) const {
  return device_.empty() ? platform::device_of_port(com_port, links_)
                         : platform::resolved_device(device_);
}

Time LinuxLine::configure(const LineSettings& settings) {
  if (!open_) throw port_not_open_error();
  if (!takes(settings)) {
    const QString reason = port_.errorString();
    takes(settings_);  // what it did take of the new ones goes again
    throw refused(reason);
  }
  settings_ = settings;
  return {};
}

bool LinuxLine::takes(const LineSettings& settings) {
  const bool rate_taken = port_.setBaudRate(settings.baud);
  bool form_taken =
      port_.setDataBits(settings.data_bits == 7 ? QSerialPort::Data7 : QSerialPort::Data8);
  form_taken = port_.setParity(parity_of(settings.parity)) && form_taken;
  form_taken =
      port_.setStopBits(settings.stop_bits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop) &&
      form_taken;
  form_taken = port_.setFlowControl(QSerialPort::NoFlowControl) && form_taken;
  return rate_taken && (form_taken || pseudo_terminal_);
}

void LinuxLine::write(std::string_view bytes) {
  if (!open_) throw port_not_open_error();
  const auto size = static_cast<qint64>(bytes.size());
  if (port_.write(bytes.data(), size) != size) throw refused(port_.errorString());
}

std::string LinuxLine::read() {
  const QByteArray bytes = port_.readAll();
  return {bytes.data(), static_cast<std::size_t>(bytes.size())};
}

std::size_t LinuxLine::waiting() const {
  return static_cast<std::size_t>(port_.bytesAvailable());
}

std::size_t LinuxLine::unsent() const {
  if (!port_.isOpen()) return 0;
  return static_cast<std::size_t>(port_.bytesToWrite()) + unsent_by_system();
}

std::size_t LinuxLine::unsent_by_system() const {
  return platform::unsent_bytes(static_cast<std::intptr_t>(port_.handle()));
}

void LinuxLine::discard_unsent() {
  port_.clear(QSerialPort::Output);
}

void LinuxLine::error_occurred(QSerialPort::SerialPortError error) {
  const bool lost = error == QSerialPort::ReadError || error == QSerialPort::WriteError ||
                    error == QSerialPort::ResourceError;
  if (!lost || !open_) return;
  // The port goes on raising errors and never closes by itself.
  close();
  loop_.handle([this] { listener_->line_lost("unplugged"); });
}

std::unique_ptr<Line> make_local_line(EventLoop& loop, const std::filesystem::path& links,
                                      const std::string& device) {
  return std::make_unique<LinuxLine>(loop, links, device);
}

}  // namespace orvex
