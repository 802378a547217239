#pragma once

#include <QMainWindow>

#include "program/program.h"
#include "qt/focus_keeper.h"
#include "qt/qt_windows.h"

class QHBoxLayout;

namespace orvex {

/// Form1 on the screen.
class MainWindow final : public QMainWindow {
 public:
  MainWindow(QtWindows& windows, Program& program);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QWidget* make_tabs();
  QHBoxLayout* make_buttons();
  QSize size_for_pages() const;
  void bind_geometry();

  QtWindows& windows_;
  Program& program_;
  FocusKeeper focus_keeper_;
};

}  // namespace orvex
