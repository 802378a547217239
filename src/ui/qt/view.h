#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace orvex {

/// Draws the windows' records: a list of values, each with what shows it. Only what has changed
/// since it was last drawn is touched.
class View {
 public:
  /// `get` gives a reference or a value of the record, `show` puts it on the screen.
  template <typename Get, typename Show>
  void bind(Get get, Show show) {
    using Value = std::remove_cvref_t<decltype(get())>;
    draws_.push_back([get, show, drawn = std::optional<Value>{}]() mutable {
      decltype(auto) value = get();
      if (drawn && *drawn == value) return;
      drawn = value;
      show(*drawn);
    });
  }

  /// Called at each draw.
  void always(std::function<void()> draw) { draws_.push_back(std::move(draw)); }

  /// What is bound meanwhile is drawn as well.
  void draw() {
    for (std::size_t next = 0; next < draws_.size(); ++next) draws_[next]();
  }

 private:
  std::deque<std::function<void()>> draws_;  // one that runs must stay where it is
};

}  // namespace orvex
