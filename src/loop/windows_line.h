#pragma once

#include <windows.h>
// After windows.h.
#include <QObject>
#include <QWinEventNotifier>
#include <array>
#include <filesystem>
#include <string>

#include "link/line.h"
#include "loop/event_loop.h"

namespace orvex {

/// An overlapped operation whose end the event loop hears of. One at a time.
class Operation {
 public:
  Operation();
  ~Operation();
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

  /// What the system is given for a new operation; what its call returned goes to begun().
  OVERLAPPED* begin();
  /// The system's error where it didn't take the operation, 0 if it did.
  DWORD begun(BOOL is_done);
  bool has_begun() const { return begun_; }
  /// The number of bytes of an operation that has come to its end, and the system's error, 0 if
  /// none.
  struct End {
    DWORD bytes = 0;
    DWORD error = 0;
  };
  End end(HANDLE port);
  /// True if there is an operation that has come to its end. The event may be that of the last one.
  bool is_over() const { return begun_ && HasOverlappedIoCompleted(&overlapped_); }
  /// Ends it now. Bytes of it may have gone.
  void cancel(HANDLE port);

  QWinEventNotifier ended;

 private:
  OVERLAPPED overlapped_{};
  bool begun_ = false;
};

/// A serial line of the machine through the system's own calls.
class WindowsLine final : public QObject, public Line {
 public:
  /// `loop` must outlive the line. Unless it is empty, `device`, such as "COM12", stands for every
  /// port.
  explicit WindowsLine(EventLoop& loop, std::string device = {});
  ~WindowsLine() override;

  void listen(Listener& listener) override { listener_ = &listener; }
  void open(int com_port, const LineSettings& settings) override;
  void close() override;
  bool is_open() const override { return port_ != INVALID_HANDLE_VALUE; }
  std::string device_path(int com_port) const override;
  Time configure(const LineSettings& settings) override;
  void write(std::string_view bytes) override;
  std::string read() override;
  std::size_t waiting() const override { return came_.size(); }
  std::size_t unsent() const override;
  void discard_unsent() override;

 private:
  static constexpr std::size_t largest_piece = 4096;

  DWORD take(const LineSettings& settings);
  DWORD arm();
  void heard();
  DWORD read_rest();
  DWORD send_piece();
  void sent();
  void lose();
  COMSTAT state() const;

  EventLoop& loop_;
  std::string device_;
  Listener* listener_ = nullptr;
  HANDLE port_ = INVALID_HANDLE_VALUE;
  bool is_real_ = false;   ///< it has DTR and RTS, so it is no pseudo-terminal
  LineSettings settings_;  ///< what the open port has taken
  Operation reading_;
  char first_ = 0;  ///< the byte that is waited for
  std::string came_;
  Operation writing_;
  std::array<char, largest_piece> piece_{};  ///< what is being written
  std::size_t piece_size_ = 0;
  std::string queue_;  ///< what has to be written after it
};

}  // namespace orvex
