#pragma once

#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QWidget>
#include <functional>

#include "program/program.h"
#include "qt/qt_windows.h"

namespace orvex {

/// Form2 on the screen: splash window of a scan and About box.
class SplashWindow final : public QWidget {
 public:
  SplashWindow(QtWindows& windows, Program& program);

  /// Called once, after the window has been painted for the first time.
  std::function<void()> first_shown;
  /// The window above which it lies, null if there is none yet.
  std::function<QWidget*()> window_below;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QLabel* add_label(const char* name);
  /// Texts need the fonts, which take as long to load as all else before the first picture.
  void add_texts();
  void bind_label(QLabel* label, const Label& record);
  void show_as(bool visible, bool modal);
  void place_ok();
  void place_labels();

  QtWindows& windows_;
  Program& program_;
  QPixmap picture_;
  QLabel* title_;
  QLabel* port_;
  QLabel* rate_;
  QPushButton* ok_;
};

}  // namespace orvex
