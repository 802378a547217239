#include "qt/focus_keeper.h"

namespace orvex {

void FocusKeeper::before_draw() {
  before_ = window_.focusWidget();
  if (before_ != fled_to_) lost_ = nullptr;
}

void FocusKeeper::after_draw() {
  if (!lost_ && before_ && !before_->isEnabled()) lost_ = before_;
  if (lost_ && lost_->isEnabled()) {
    lost_->setFocus();
    lost_ = nullptr;
  }
  fled_to_ = window_.focusWidget();
}

}  // namespace orvex
