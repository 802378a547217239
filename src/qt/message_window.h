#pragma once

#include <QMessageBox>

#include "window/window_system.h"

namespace orvex {

/// A window with a part that its message boxes ask about, and so must not cover.
class KeptInView {
 public:
  virtual ~KeptInView() = default;
  /// That part in pixels of the screen, the window's frame included.
  virtual QRect kept_in_view() const = 0;
};

/// A message box on the screen. It lies in the middle of its parent, or, if that has a part to be
/// kept in view, beside this part: below it if the screen has the room.
class MessageWindow final : public QMessageBox {
 public:
  MessageWindow(const MessageBox& box, QWidget* parent);

  /// The button that was pressed; the refusing one if the box was taken down.
  Answer answer() const;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  Buttons buttons_;
};

}  // namespace orvex
