#pragma once

#include <utility>

#include "window/run_time_error.h"

namespace orvex {

/// Runs steps one by one whose failures end nothing, and remembers whether one has failed.
class Attempts {
 public:
  template <typename Step>
  void operator()(Step&& step) {
    try {
      std::forward<Step>(step)();
    } catch (const RunTimeError&) {
      failed_ = true;
    }
  }

  bool failed() const { return failed_; }

 private:
  bool failed_ = false;
};

}  // namespace orvex
