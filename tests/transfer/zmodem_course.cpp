#include "transfer/zmodem_course.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "transfer/zmodem_codec.h"
#include "transfer/zmodem_sender.h"

namespace orvex::testing {

std::string noise(std::size_t size, std::uint32_t seed) {
  std::mt19937 random(seed);
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random() & 0xFF);
  return bytes;
}

bool MemorySource::read(std::uint64_t offset, std::span<char> into) {
  if (offset + into.size() > std::min<std::uint64_t>(readable_, data_.size())) return false;
  std::copy_n(data_.begin() + static_cast<std::ptrdiff_t>(offset), into.size(), into.begin());
  return true;
}

std::string PacedLine::advance(Time now) {
  if (idle_) free_at_ = std::max(free_at_, now);
  std::size_t gone = 0;
  for (; gone < unsent_.size() && free_at_ + byte_time_ <= now; ++gone) {
    free_at_ += byte_time_;
    carried += unsent_[gone];
    const auto due = [this](std::size_t every) { return every > 0 && carried.size() % every == 0; };
    if (due(damage_.drop_every) || damage_.drop_at == carried.size() - 1) continue;
    const bool flip = due(damage_.flip_every) || damage_.flip_at == carried.size() - 1 ||
                      (damage_.flip_one_in > 0 && random_() % damage_.flip_one_in == 0);
    under_way_.emplace_back(free_at_ + latency_, static_cast<char>(unsent_[gone] ^ (flip ? 4 : 0)));
  }
  unsent_.erase(0, gone);
  idle_ = unsent_.empty();
  std::string arrived;
  for (; !under_way_.empty() && under_way_.front().first <= now; under_way_.pop_front()) {
    arrived += under_way_.front().second;
  }
  return arrived;
}

Outcome run(FileEngine& engine, const Course& course) {
  Outcome outcome;
  outcome.receiver = ScriptedReceiver(course.receiver);
  PacedLine there(course.byte_time, course.latency, course.there, course.deep);
  PacedLine back(course.byte_time, course.latency, course.back);
  std::uint64_t progress = 0;
  Time now{};
  for (; now < course.limit && !(engine.finished() && there.idle()); now += course.step) {
    const std::string heard = back.advance(now);
    if (!heard.empty()) outcome.last_answer = now;
    engine.receive(heard, now);
    if (engine.wake() && *engine.wake() <= now) {
      engine.tick(now);
      // A line that takes nothing would have it called without end. A CRC is taken step by step.
      const Time wake = engine.wake().value_or(Time::max());
      outcome.sleeps = outcome.sleeps && (wake > now || wake == Time{});
    }
    if (course.each_step) course.each_step(engine, now);
    if (engine.take_discard()) there.discard();
    for (;;) {
      const std::size_t room = course.driver_room - std::min(course.driver_room, there.unsent());
      const std::string bytes = engine.transmit(room, now);
      if (bytes.empty()) break;
      there.put(bytes);
    }
    outcome.receiver.hear(there.advance(now), now);
    back.put(outcome.receiver.speak(now));
    const bool complete = engine.state() == FileEngine::State::complete;
    outcome.progress_true = outcome.progress_true && engine.progress() >= progress &&
                            engine.progress() <= outcome.receiver.file.size() &&
                            (complete || engine.total() == 0 || engine.progress() < engine.total());
    progress = engine.progress();
  }
  outcome.state = engine.state();
  outcome.reason = engine.reason();
  outcome.finished = engine.finished();
  outcome.took = now;
  outcome.progress = progress;
  outcome.there = there.carried;
  outcome.back = back.carried;
  return outcome;
}

Outcome send(const std::string& data, const Course& course) {
  ZmodemSender sender(std::make_unique<MemorySource>(data), Time{});
  return run(sender, course);
}

void expect_complete(const Outcome& outcome, const std::string& data) {
  EXPECT_EQ(outcome.state, FileEngine::State::complete) << outcome.reason;
  EXPECT_TRUE(outcome.finished);
  EXPECT_TRUE(outcome.sleeps);
  EXPECT_EQ(outcome.progress, data.size());
  EXPECT_TRUE(outcome.progress_true);
  EXPECT_TRUE(outcome.receiver.file == data);
  EXPECT_FALSE(outcome.receiver.overrun);
}

void expect_failed(const Outcome& outcome, const std::string& reason) {
  EXPECT_EQ(outcome.state, FileEngine::State::failed);
  EXPECT_TRUE(outcome.finished);
  EXPECT_TRUE(outcome.sleeps);
  EXPECT_TRUE(outcome.progress_true);
  EXPECT_NE(outcome.reason.find(reason), std::string::npos) << outcome.reason;
}

int times(std::string_view part, std::string_view text) {
  int found = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string_view::npos; ++at) ++found;
  return found;
}

std::string answer(unsigned type, std::uint32_t value) {
  return zmodem_hex_header({static_cast<ZmodemFrame>(type), value});
}

}  // namespace orvex::testing
