#pragma once

#include <QLineEdit>
#include <functional>
#include <string>

#include "qt/qt_windows.h"
#include "setup/scanner_setup.h"
#include "window/controls.h"

namespace orvex {

/// The box of a text field of the setup. Its limit binds typing and pasting, while a longer text of
/// the record is shown whole; such a text can be made shorter, but what is put in never takes it
/// above the limit. An edit of a text that the record no longer has is dropped. The box keeps caret
/// and selection when the focus goes and comes back.
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
  std::u16string shown_;  // the record as the box has it
  Caret& caret_;
  int most_typed_;
  bool setting_ = false;
};

}  // namespace orvex
