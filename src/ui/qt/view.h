#pragma once

#include <functional>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

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

  void draw() {
    for (auto& draw : draws_) draw();
  }

 private:
  std::vector<std::function<void()>> draws_;
};

}  // namespace orvex
