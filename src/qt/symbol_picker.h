#pragma once

#include <QFrame>
#include <QLabel>
#include <functional>
#include <vector>

namespace orvex {

/// The labels of the 33 control characters, for mouse and keyboard: the arrow keys move between
/// them, Enter and the space bar pick.
class SymbolPicker final : public QFrame {
 public:
  /// `array` is the name of the labels' control array; `picked` gets the index of the label.
  SymbolPicker(const QString& array, const std::function<void(int)>& picked);

  /// Puts the labels behind a control of the same window in the order of the Tab key.
  void come_after(QWidget& control);

 private:
  void move_from(std::size_t position, int key);

  std::vector<QLabel*> labels_;
};

}  // namespace orvex
