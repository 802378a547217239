#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simulator/pty_device.h"
#include "simulator/scanner.h"

namespace orvex::simulator {

/// The commands that a person, or a test, gives on standard input, one a line.
class CommandConsole {
 public:
  /// Both must outlive the console.
  CommandConsole(Scanner& scanner, PtyDevice& device) : scanner_(scanner), device_(device) {}

  /// To wait on for reading; -1 once standard input has ended.
  int descriptor() const { return descriptor_; }
  /// Reads what has come and obeys the whole lines in it. False after `quit`.
  bool obey();

 private:
  bool obey(std::string_view line);
  void obey_scanner(std::string_view command, std::string_view value);

  Scanner& scanner_;
  PtyDevice& device_;
  int descriptor_ = 0;
  std::string unread_;
};

}  // namespace orvex::simulator
