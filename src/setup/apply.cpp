#include "setup/apply.h"

#include <algorithm>

#include "base/run_time_error.h"
#include "link/exchange.h"
#include "link/frame.h"

namespace orvex {
namespace {

/// Characters of a long text between two calls of keep_alive: well under a millisecond of work.
constexpr std::size_t alive_step = 1 << 16;

void apply_choice(ScannerSetup& setup, const Parameter& row, std::string_view value) {
  const auto found = std::ranges::find(row.choices, value, &Choice::value);
  if (found == row.choices.end()) return;
  setup.choose(row.field, static_cast<std::size_t>(found - row.choices.begin()));
}

/// False if the text ends inside a frame. Calls keep_alive inside a frame, after `step`
/// characters each.
bool apply_frames(ScannerSetup& setup, std::string_view text, std::size_t step,
                  const KeepAlive& keep_alive) {
  std::size_t alive_at = 0;
  std::size_t position = 0;
  while (true) {
    const auto start = text.find(SOH, position);
    if (start == std::string_view::npos || start + 1 >= text.size()) return true;
    const auto end = text.find(EOT, start + 1);
    if (end == std::string_view::npos) return false;
    if (start >= alive_at) {
      alive_at = start + step;
      keep_alive();
    }
    const auto tag = text.substr(start + 1, end - start - 1);
    // A longer one can't come from a scanner, and a text box would be busy with it for seconds.
    if (tag.size() <= most_in_reply) Apply_Tag(setup, tag);
    position = end + 1;
  }
}

}  // namespace

void Apply_Tag(ScannerSetup& setup, std::string_view tag) {
  constexpr std::size_t value_at = 8;  // behind "<NAME="
  if (tag.size() < value_at || tag[0] != '<' || tag[7] != '=') return;
  const auto row = std::ranges::find(parameters(), tag.substr(1, 6), &Parameter::name);
  if (row == parameters().end()) return;
  const auto behind = tag.substr(value_at);
  const auto value = behind.substr(0, behind.empty() ? 0 : behind.size() - 1);
  if (row->is_text()) {
    setup.text(row->field) = from_latin1(value);
  } else if (behind.ends_with('>')) {
    apply_choice(setup, *row, value);
  }
}

void Apply_Stream(ScannerSetup& setup, std::string_view text, const KeepAlive& keep_alive) {
  apply_frames(setup, text, alive_step, keep_alive);
}

void apply_reply(ScannerSetup& setup, std::string_view reply, const KeepAlive& keep_alive) {
  const bool whole = apply_frames(setup, reply.substr(0, most_in_reply), 0, keep_alive);
  if (!whole || reply.size() > most_in_reply) throw overflow_error();
}

}  // namespace orvex
