#include "loop/windows_line.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "base/run_time_error.h"
#include "loop/local_line.h"
#include "platform/ports.h"

namespace orvex {
namespace {

RunTimeError not_available(std::string cause) {
  return {error_number::device_error, std::move(cause)};
}

std::string words_of(DWORD error) {
  return std::system_category().message(static_cast<int>(error));
}

std::string cause_of_refusal(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return "no such device";
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return "held by another program";
    default:
      return words_of(error);
  }
}

BYTE parity_of(Parity parity) {
  switch (parity) {
    case Parity::odd:
      return ODDPARITY;
    case Parity::even:
      return EVENPARITY;
    case Parity::none:
      break;
  }
  return NOPARITY;
}

}  // namespace

Operation::Operation() {
  overlapped_.hEvent = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
  ended.setHandle(overlapped_.hEvent);
}

Operation::~Operation() {
  ended.setEnabled(false);
  ::CloseHandle(overlapped_.hEvent);
}

OVERLAPPED* Operation::begin() {
  const HANDLE event = overlapped_.hEvent;
  overlapped_ = {};
  overlapped_.hEvent = event;
  begun_ = true;
  ended.setEnabled(true);
  return &overlapped_;
}

DWORD Operation::begun(BOOL is_done) {
  const DWORD error = is_done ? 0 : ::GetLastError();
  if (error == 0 || error == ERROR_IO_PENDING) return 0;
  begun_ = false;
  ended.setEnabled(false);
  return error;
}

Operation::End Operation::end(HANDLE port) {
  End result;
  begun_ = false;
  ended.setEnabled(false);
  if (!::GetOverlappedResult(port, &overlapped_, &result.bytes, TRUE)) {
    result.error = ::GetLastError();
  }
  return result;
}

void Operation::cancel(HANDLE port) {
  if (!begun_) return;
  begun_ = false;
  ended.setEnabled(false);
  ::CancelIoEx(port, &overlapped_);
  // A driver whose device is gone may never answer.
  constexpr DWORD most_ms = 1000;
  ::WaitForSingleObject(overlapped_.hEvent, most_ms);
}

WindowsLine::WindowsLine(EventLoop& loop, std::string device)
    : loop_(loop), device_(std::move(device)) {
  connect(&reading_.ended, &QWinEventNotifier::activated, this, &WindowsLine::heard);
  connect(&writing_.ended, &QWinEventNotifier::activated, this, &WindowsLine::sent);
}

WindowsLine::~WindowsLine() {
  close();
}

std::string WindowsLine::device_path(int com_port) const {
  return device_.empty() ? platform::device_of_port(com_port, {})
                         : platform::resolved_device(device_);
}

void WindowsLine::open(int com_port, const LineSettings& settings) {
  close();
  const std::string path = device_path(com_port);
  if (path.empty()) throw not_available("no such device");
  port_ = ::CreateFileA((R"(\\.\)" + path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                        OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
  if (!is_open()) throw not_available(cause_of_refusal(::GetLastError()));
  // A read ends with its first byte, a write with its last.
  COMMTIMEOUTS no_limits{};
  ::SetCommTimeouts(port_, &no_limits);
  ::SetupComm(port_, in_buffer_size, largest_piece);
  is_real_ = ::EscapeCommFunction(port_, SETDTR) != 0;
  DWORD error = take(settings);
  if (error == 0) {
    settings_ = settings;
    ::EscapeCommFunction(port_, SETDTR);
    ::EscapeCommFunction(port_, SETRTS);
    ::PurgeComm(port_, PURGE_RXABORT | PURGE_RXCLEAR | PURGE_TXABORT | PURGE_TXCLEAR);
    error = arm();
  }
  if (error == 0) return;
  close();
  throw not_available(words_of(error));
}

void WindowsLine::close() {
  if (!is_open()) return;
  discard_unsent();
  reading_.cancel(port_);
  came_.clear();
  ::CloseHandle(std::exchange(port_, INVALID_HANDLE_VALUE));
}

Time WindowsLine::configure(const LineSettings& settings) {
  if (!is_open()) throw port_not_open_error();
  if (const DWORD error = take(settings); error != 0) {
    take(settings_);  // what it did take of the new ones goes again
    throw not_available("The port is not available: " + words_of(error));
  }
  settings_ = settings;
  return {};
}

/// All in one step, so that no other rate is in between. Gives the system's error, 0 if none.
DWORD WindowsLine::take(const LineSettings& settings) {
  DCB wanted{};
  wanted.DCBlength = sizeof wanted;
  if (!::GetCommState(port_, &wanted)) return ::GetLastError();
  wanted.BaudRate = static_cast<DWORD>(settings.baud);
  wanted.ByteSize = static_cast<BYTE>(settings.data_bits);
  wanted.Parity = parity_of(settings.parity);
  wanted.StopBits = settings.stop_bits == 2 ? TWOSTOPBITS : ONESTOPBIT;
  wanted.fBinary = TRUE;
  wanted.fParity = settings.parity != Parity::none;
  wanted.fDtrControl = DTR_CONTROL_ENABLE;
  wanted.fRtsControl = RTS_CONTROL_ENABLE;
  wanted.fOutxCtsFlow = wanted.fOutxDsrFlow = wanted.fDsrSensitivity = FALSE;
  wanted.fOutX = wanted.fInX = wanted.fNull = wanted.fErrorChar = wanted.fAbortOnError = FALSE;
  bool is_taken = ::SetCommState(port_, &wanted) != 0;
  if (!is_taken && !is_real_) {
    // A pseudo-terminal may refuse parity and 7 data bits, which it doesn't have, but no rate.
    wanted.Parity = NOPARITY;
    wanted.ByteSize = 8;
    wanted.fParity = FALSE;
    is_taken = ::SetCommState(port_, &wanted) != 0;
  }
  if (!is_taken) return ::GetLastError();
  if (!is_real_) return 0;
  DCB taken{};
  taken.DCBlength = sizeof taken;
  if (!::GetCommState(port_, &taken)) return ::GetLastError();
  const bool same = taken.BaudRate == wanted.BaudRate && taken.ByteSize == wanted.ByteSize &&
                    taken.Parity == wanted.Parity && taken.StopBits == wanted.StopBits;
  return same ? 0 : ERROR_INVALID_PARAMETER;
}

/// Waits for the next byte. Gives the system's error, 0 if none.
DWORD WindowsLine::arm() {
  OVERLAPPED* const operation = reading_.begin();
  return reading_.begun(::ReadFile(port_, &first_, 1, nullptr, operation));
}

void WindowsLine::heard() {
  if (!reading_.is_over()) return;
  const auto [bytes, failure] = reading_.end(port_);
  DWORD error = failure;
  came_.append(&first_, bytes);
  if (error == 0) error = read_rest();
  // What nobody reads stays with the driver.
  if (error == 0 && came_.size() < in_buffer_size) error = arm();
  if (!came_.empty()) {
    loop_.handle_line([this] {
      if (is_open()) listener_->bytes_arrived();
    });
  }
  if (error != 0) lose();
}

DWORD WindowsLine::read_rest() {
  const std::size_t there = std::min<std::size_t>(state().cbInQue, in_buffer_size - came_.size());
  if (there == 0) return 0;
  std::string rest(there, '\0');
  OVERLAPPED* const operation = reading_.begin();
  const DWORD refusal =
      reading_.begun(::ReadFile(port_, rest.data(), static_cast<DWORD>(there), nullptr, operation));
  if (refusal != 0) return refusal;
  const auto [bytes, error] = reading_.end(port_);
  came_.append(rest, 0, bytes);
  return error;
}

std::string WindowsLine::read() {
  std::string bytes = std::exchange(came_, {});
  if (is_open() && !reading_.has_begun() && arm() != 0) {
    QMetaObject::invokeMethod(this, &WindowsLine::lose, Qt::QueuedConnection);
  }
  return bytes;
}

void WindowsLine::write(std::string_view bytes) {
  if (!is_open()) throw port_not_open_error();
  queue_ += bytes;
  if (writing_.has_begun()) return;
  if (const DWORD error = send_piece(); error != 0) {
    throw not_available("The port is not available: " + words_of(error));
  }
}

DWORD WindowsLine::send_piece() {
  piece_size_ = std::min(queue_.size(), largest_piece);
  std::copy_n(queue_.begin(), piece_size_, piece_.begin());
  queue_.erase(0, piece_size_);
  OVERLAPPED* const operation = writing_.begin();
  return writing_.begun(
      ::WriteFile(port_, piece_.data(), static_cast<DWORD>(piece_size_), nullptr, operation));
}

void WindowsLine::sent() {
  if (!writing_.is_over()) return;
  const auto [bytes, failure] = writing_.end(port_);
  DWORD error = failure;
  if (error == 0 && bytes < piece_size_)
    queue_.insert(0, piece_.data() + bytes, piece_size_ - bytes);
  if (error == 0 && !queue_.empty()) error = send_piece();
  if (error != 0) return lose();
  loop_.handle_line([this] {
    if (is_open()) listener_->bytes_sent();
  });
}

std::size_t WindowsLine::unsent() const {
  if (!is_open()) return 0;
  const std::size_t at_driver = state().cbOutQue;
  // A real driver counts what is left of the write; Wine's pseudo-terminal doesn't.
  const std::size_t piece = writing_.has_begun() && !is_real_ ? piece_size_ : 0;
  return queue_.size() + std::max(at_driver, piece);
}

void WindowsLine::discard_unsent() {
  if (!is_open()) return;
  queue_.clear();
  writing_.cancel(port_);
  ::PurgeComm(port_, PURGE_TXABORT | PURGE_TXCLEAR);
}

void WindowsLine::lose() {
  if (!is_open()) return;
  close();
  loop_.handle([this] { listener_->line_lost("unplugged"); });
}

COMSTAT WindowsLine::state() const {
  COMSTAT state{};
  DWORD errors = 0;
  if (!::ClearCommError(port_, &errors, &state)) return {};
  return state;
}

std::unique_ptr<Line> make_local_line(EventLoop& loop, const std::filesystem::path& /*links*/,
                                      const std::string& device) {
  return std::make_unique<WindowsLine>(loop, device);
}

}  // namespace orvex
