#pragma once

#include <algorithm>
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
    parts_.push_back([get, show, drawn = std::optional<Value>{}](Act act) mutable {
      decltype(auto) value = get();
      if (drawn && *drawn == value) return false;
      if (act == Act::look) return true;
      drawn = value;
      show(*drawn);
      return true;
    });
  }

  /// Called at each draw.
  void always(std::function<void()> draw) {
    parts_.push_back([draw = std::move(draw)](Act act) {
      if (act == Act::draw) draw();
      return false;
    });
  }

  /// What is bound meanwhile is drawn as well.
  void draw() {
    for (std::size_t next = 0; next < parts_.size(); ++next) parts_[next](Act::draw);
  }

  /// True if a draw would change something.
  bool is_stale() {
    return std::ranges::any_of(parts_, [](auto& part) { return part(Act::look); });
  }

 private:
  enum class Act { look, draw };

  /// Tells whether what it shows has changed since it was drawn.
  using Part = std::function<bool(Act)>;

  std::deque<Part> parts_;  // one that runs must stay where it is
};

}  // namespace orvex
