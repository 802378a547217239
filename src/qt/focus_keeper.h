#pragma once

#include <QPointer>
#include <QWidget>

namespace orvex {

/// Hands the focus back to a control that lost it by being disabled for a while, unless the user
/// has moved it in the meantime.
class FocusKeeper {
 public:
  /// `window` must outlive the keeper.
  explicit FocusKeeper(const QWidget& window) : window_(window) {}

  void before_draw();
  void after_draw();

 private:
  const QWidget& window_;
  QPointer<QWidget> before_;
  QPointer<QWidget> lost_;
  QPointer<QWidget> fled_to_;
};

}  // namespace orvex
