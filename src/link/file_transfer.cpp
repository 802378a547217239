#include "link/file_transfer.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/run_time_error.h"

namespace orvex {
namespace {

using namespace std::chrono_literals;

/// How often a transfer looks whether the line has room again.
constexpr Time room_poll = 5ms;
/// A line that takes bytes without end still gives the window its turn.
constexpr std::size_t most_in_one_step = 32768;

/// `done` bytes of a file of `total` in the unit of total(). A part never counts as the whole.
std::int32_t as_count(std::uint64_t done, std::uint64_t total) {
  constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
  constexpr std::uint64_t kib = 1024;
  const std::uint64_t unit = total > most ? kib : 1;
  const std::uint64_t count = done < total ? done / unit : (total + unit - 1) / unit;
  return static_cast<std::int32_t>(std::min(count, most));
}

}  // namespace

FileTransfer::FileTransfer(const Clock& clock, Line& line, EngineFactory make_engine)
    : clock_(clock), line_(line), make_engine_(std::move(make_engine)) {}

void FileTransfer::start(const std::filesystem::path& path, int rate) {
  engine_ = make_engine_(path, rate, clock_.now());
  total_ = as_count(engine_->total(), engine_->total());
  progress_told_ = 0;
  reason_.clear();
  work();
}

void FileTransfer::stop() {
  try {
    if (engine_->state() == FileEngine::State::running) engine_->cancel(clock_.now());
    send_what_fits(std::numeric_limits<std::size_t>::max());
  } catch (const RunTimeError&) {
    // The device is gone, and with it whoever should have been told of the stop.
  }
  end(engine_->reason());
}

void FileTransfer::lose_line() {
  if (engine_) end("the line is gone");
}

void FileTransfer::receive() {
  engine_->receive(line_.read(), clock_.now());
  work();
}

void FileTransfer::work() {
  try {
    send_what_fits(engine_->most_unsent());
  } catch (const RunTimeError& error) {
    end(error.text);
  }
  if (!engine_) return;
  report_progress();
  if (engine_ && engine_->finished()) end(engine_->reason());
}

std::optional<Time> FileTransfer::due() const {
  if (!engine_) return std::nullopt;
  const auto wake = engine_->wake();
  if (look_again_ == Time::max()) return wake;
  return wake ? std::min(*wake, look_again_) : look_again_;
}

void FileTransfer::run() {
  if (!engine_) return;
  engine_->tick(clock_.now());
  work();
}

void FileTransfer::send_what_fits(std::size_t most_unsent) {
  if (engine_->take_discard()) line_.discard_unsent();
  std::size_t sent = 0;
  std::size_t unsent = line_.unsent();
  while (unsent < most_unsent && sent < most_in_one_step) {
    const auto bytes = engine_->transmit(most_unsent - unsent, clock_.now());
    if (bytes.empty()) break;
    line_.write(bytes);
    sent += bytes.size();
    unsent = line_.unsent();
  }
  if (sent >= most_in_one_step) {
    look_again_ = clock_.now();
  } else {
    look_again_ = unsent > 0 ? clock_.now() + room_poll : Time::max();
  }
}

void FileTransfer::report_progress() {
  const auto done = engine_->progress();
  if (done == progress_told_) return;
  progress_told_ = done;
  if (progress) progress(as_count(done, engine_->total()));
}

void FileTransfer::end(std::string_view reason) {
  reason_ = reason;
  engine_.reset();
}

}  // namespace orvex
