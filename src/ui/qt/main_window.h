#pragma once

#include <QMainWindow>
#include <functional>
#include <vector>

#include "ui/program.h"
#include "ui/qt/qt_windows.h"

class QGridLayout;
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
  void add_symbol_pickers(const std::vector<QWidget*>& pages);
  QHBoxLayout* make_buttons();
  QSize size_for_pages() const;
  void bind_geometry();

  QtWindows& windows_;
  Program& program_;
};

}  // namespace orvex
