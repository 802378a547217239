#include "loop/event_loop.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

class NoScreen final : public Screen {
 public:
  bool is_drawing() const override { return false; }
  void handled() override {}
  void heard_line() override {}
  void pumped(bool /*sleeps*/) override {}
  std::optional<Time> due() const override { return std::nullopt; }
};

class Once final : public Scheduled {
 public:
  std::optional<Time> due() const override {
    return done ? std::nullopt : std::optional<Time>(Time{});
  }
  void run() override { done = true; }
  bool done = false;
};

TEST(EventLoop, a_pump_that_has_run_what_was_due_does_not_sleep_after_it) {
  NoScreen screen;
  EventLoop loop(screen);
  loop.pump(Wait::no);  // whatever else is under way at a start
  Once once;
  loop.schedule(once);
  QTimer guard;
  guard.start(3000);
  QElapsedTimer clock;
  clock.start();
  loop.pump(Wait::for_event);
  EXPECT_TRUE(once.done);
  EXPECT_LT(clock.elapsed(), 2000) << "who waits for it waits in vain";
}

}  // namespace
}  // namespace orvex
