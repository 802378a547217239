#pragma once

#include <optional>
#include <utility>

#include "base/run_time_error.h"

namespace orvex {

/// Runs steps one by one whose failures end nothing, and remembers the last failure.
class Attempts {
 public:
  template <typename Step>
  void operator()(Step&& step) {
    try {
      std::forward<Step>(step)();
    } catch (const RunTimeError& error) {
      failure_ = error;
    }
  }

  bool failed() const { return failure_.has_value(); }
  const std::optional<RunTimeError>& failure() const { return failure_; }

 private:
  std::optional<RunTimeError> failure_;
};

}  // namespace orvex
