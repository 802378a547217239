#pragma once

#include <QStatusBar>

#include "ui/qt/qt_windows.h"
#include "window/forms.h"

class QLabel;

namespace orvex {

/// The two panels of sbrStatus, and the port indicator FrameLED that lies over it.
class StatusBarView final : public QStatusBar {
 public:
  StatusBarView(QtWindows& windows, Form1& form1);

 private:
  void add_panel(QtWindows& windows, Form1& form1, int number, int stretch);
  void add_indicator(QtWindows& windows, Form1& form1);
};

}  // namespace orvex
