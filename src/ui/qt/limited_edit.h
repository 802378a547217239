#pragma once

#include <QLineEdit>
#include <functional>
#include <string>

#include "setup/scanner_setup.h"
#include "ui/qt/qt_windows.h"
#include "window/controls.h"

namespace orvex {

/// The box of a text field of the setup. Its limit binds typing and pasting, while a longer text of
/// the record is shown whole. It keeps caret and selection when the focus goes and comes back.
class LimitedEdit final : public QLineEdit {
 public:
  LimitedEdit(QtWindows& windows, std::u16string& record, Caret& caret, int most_typed);

  /// Called after each key release.
  std::function<void()> key_up;

 protected:
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void show_record();
  void take_edit(const QString& edited);
  void take_caret();
  void set_text_and_caret(const QString& text, int caret);

  QtWindows& windows_;
  std::u16string& record_;
  Caret& caret_;
  int most_typed_;
  bool setting_ = false;
};

}  // namespace orvex
