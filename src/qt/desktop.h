#pragma once

#include <filesystem>
#include <memory>

#include "loop/port_line.h"
#include "program/program.h"
#include "qt/main_window.h"
#include "qt/manual_dialog.h"
#include "qt/plain_tips.h"
#include "qt/qt_windows.h"
#include "qt/splash_window.h"
#include "qt/upload_window.h"

namespace orvex {

/// The whole program on Qt: window system, line, tool and windows, in the order of their lives. A
/// QApplication must exist.
class Desktop {
 public:
  explicit Desktop(const std::filesystem::path& state_folder);

  /// Makes the windows other than the splash. They come after the splash is on the screen, so that
  /// it doesn't wait for them.
  void make_windows();

  /// Runs the tool's entry and then the event loop, to the end of the process. Gives its exit code.
  int run();

  PlainTips plain_tips;
  QtWindows windows;
  PortLine line;
  Program program;
  SplashWindow splash_window;
  std::unique_ptr<MainWindow> main_window;
  std::unique_ptr<UploadWindow> upload_window;
  std::unique_ptr<ManualDialog> manual_dialog;
};

}  // namespace orvex
