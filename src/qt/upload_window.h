#pragma once

#include <QDialog>
#include <QPixmap>

#include "program/program.h"
#include "qt/message_window.h"
#include "qt/qt_windows.h"

class QGridLayout;

namespace orvex {

/// Form3 on the screen: the window of a firmware upload.
class UploadWindow final : public QDialog, public KeptInView {
 public:
  UploadWindow(QtWindows& windows, Program& program, QWidget* parent);

  void reject() override;
  /// The rows of the image's head.
  QRect kept_in_view() const override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  /// In the middle of the main window, but not so low that its boxes have no room below the head.
  void place();
  void add_header_row(QGridLayout& grid, int row);
  void add_progress(QGridLayout& grid);
  void add_animation(QGridLayout& grid);

  QtWindows& windows_;
  Program& program_;
  QWidget* last_row_ = nullptr;
};

}  // namespace orvex
