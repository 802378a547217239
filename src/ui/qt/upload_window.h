#pragma once

#include <QDialog>
#include <QPixmap>

#include "ui/program.h"
#include "ui/qt/qt_windows.h"

class QGridLayout;

namespace orvex {

/// Form3 on the screen: the window of a firmware upload.
class UploadWindow final : public QDialog {
 public:
  UploadWindow(QtWindows& windows, Program& program, QWidget* parent);

  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void add_header_row(QGridLayout& grid, int row);
  void add_progress(QGridLayout& grid);
  void add_animation(QGridLayout& grid);

  QtWindows& windows_;
  Program& program_;
};

}  // namespace orvex
