#pragma once

#include <filesystem>

#include "ui/program.h"
#include "ui/qt/main_window.h"
#include "ui/qt/manual_dialog.h"
#include "ui/qt/qt_line.h"
#include "ui/qt/qt_windows.h"
#include "ui/qt/splash_window.h"
#include "ui/qt/upload_window.h"

namespace orvex {

/// The whole program on Qt: window system, line, tool and windows, in the order of their lives. A
/// QApplication must exist.
class Desktop {
 public:
  explicit Desktop(const std::filesystem::path& state_folder);

  /// Runs the tool's entry and then the event loop, to the end of the process. Gives its exit code.
  int run();

  QtWindows windows;
  QtLine line;
  Program program;
  MainWindow main_window;
  SplashWindow splash_window;
  UploadWindow upload_window;
  ManualDialog manual_dialog;
};

}  // namespace orvex
