#pragma once

#include <QStatusBar>
#include <array>

#include "qt/qt_windows.h"
#include "window/forms.h"

class QFrame;
class QLabel;

namespace orvex {

/// The two panels of sbrStatus, and the port indicator FrameLED that lies over it.
class StatusBarView final : public QStatusBar {
 public:
  StatusBarView(QtWindows& windows, Form1& form1);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void add_panel(QtWindows& windows, Form1& form1, int number, int stretch);
  void add_indicator(QtWindows& windows, Form1& form1);
  void place_lamps();

  QFrame* indicator_ = nullptr;
  std::array<QLabel*, 2> lamps_{};
};

}  // namespace orvex
