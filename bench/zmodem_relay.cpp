#include "bench/zmodem_relay.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <string>

namespace orvex::bench {
namespace {

Time steady_now() {
  return std::chrono::steady_clock::now().time_since_epoch();
}

std::size_t chunk_for(Time byte_time) {
  constexpr Time tick = std::chrono::milliseconds(1);
  if (byte_time == Time{}) return 4096;
  return static_cast<std::size_t>(std::max<std::int64_t>(1, tick / byte_time));
}

}  // namespace

RelayedLine::RelayedLine(int from, int to, LineKind kind)
    : from_(from), to_(to), kind_(kind), chunk_(chunk_for(kind.byte_time)), random_(kind.seed) {
  for (const int fd : {from_, to_}) fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
}

void RelayedLine::pump(Time now) {
  if (kind_.dies_after > Time{}) dies_at_ = std::min(dies_at_, now + kind_.dies_after);
  dead_ = dead_ || now >= dies_at_;
  take(now);
  deliver(now);
}

void RelayedLine::take(Time now) {
  std::array<char, 4096> buffer;
  while (!source_gone_ && !dead_ && under_way_.size() < 65536 && (idle_ || next_take() <= now)) {
    const ssize_t got = read(from_, buffer.data(), chunk_);
    if (got <= 0) {
      source_gone_ = got == 0 || errno != EAGAIN;
      if (source_gone_) source_left_at_ = now;
      idle_ = true;
      return;
    }
    if (idle_) free_at_ = std::max(free_at_, now);
    idle_ = false;
    for (ssize_t i = 0; i < got; ++i) carry(buffer[static_cast<std::size_t>(i)]);
    if (kind_.byte_time == Time{}) return;
  }
}

void RelayedLine::carry(char byte) {
  free_at_ += kind_.byte_time;
  last_byte_ = free_at_;
  ++bytes_;
  if (kind_.drop_every > 0 && bytes_ % kind_.drop_every == 0) return;
  if (kind_.flip_every > 0 && bytes_ % kind_.flip_every == 0) {
    byte = static_cast<char>(byte ^ (1 << (bytes_ / kind_.flip_every % 8)));
  }
  if (kind_.flip_one_in > 0 && random_() % kind_.flip_one_in == 0) {
    byte = static_cast<char>(byte ^ (1 << (random_() % 8)));
  }
  under_way_.emplace_back(free_at_ + kind_.latency, byte);
}

void RelayedLine::deliver(Time now) {
  std::string due;
  for (const auto& [when, byte] : under_way_) {
    if (when > now || due.size() == 4096) break;
    due += byte;
  }
  if (due.empty()) return;
  const ssize_t written = write(to_, due.data(), due.size());
  const bool receiver_gone = written < 0 && errno != EAGAIN;
  blocked_until_ = written < 0 && !receiver_gone ? now + std::chrono::milliseconds(5) : Time{};
  const std::size_t done =
      receiver_gone ? due.size() : static_cast<std::size_t>(std::max<ssize_t>(written, 0));
  under_way_.erase(under_way_.begin(), under_way_.begin() + static_cast<std::ptrdiff_t>(done));
}

Time RelayedLine::next_take() const {
  return free_at_ - kind_.byte_time * static_cast<std::int64_t>(kind_.buffer);
}

Time RelayedLine::next_due() const {
  Time due = idle_ || source_gone_ || dead_ ? Time::max() : next_take();
  if (!under_way_.empty()) due = std::min(due, std::max(under_way_.front().first, blocked_until_));
  return due;
}

void relay(RelayedLine& there, RelayedLine& back, Time until) {
  constexpr Time last_words = std::chrono::seconds(3);
  const auto over = [&](Time now) {
    return there.over() && (back.over() || now > there.source_left_at() + last_words);
  };
  for (Time now = steady_now(); now < until && !over(now); now = steady_now()) {
    there.pump(now);
    back.pump(now);
    const Time due =
        std::min({there.next_due(), back.next_due(), now + std::chrono::milliseconds(20)});
    const Time wait = std::max(due - steady_now(), Time{});
    const timespec timeout{static_cast<std::time_t>(wait.count() / 1'000'000'000),
                           static_cast<long>(wait.count() % 1'000'000'000)};
    std::array<pollfd, 2> sources{};
    nfds_t waiting = 0;
    for (const RelayedLine* line : {&there, &back}) {
      if (line->idle() && !line->over()) sources[waiting++] = {line->source(), POLLIN, 0};
    }
    ppoll(sources.data(), waiting, &timeout, nullptr);
  }
}

}  // namespace orvex::bench
