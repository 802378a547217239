#pragma once

#include <functional>

#include "console/console.h"
#include "console/progress_line.h"
#include "loop/event_loop.h"

namespace orvex {

/// A console on Qt's event loop, with the process's standard streams.
class LoopConsole final : public Console, private Screen {
 public:
  explicit LoopConsole(bool quiet);

  Time now() const override { return loop.now(); }
  void schedule(Scheduled& scheduled) override { loop.schedule(scheduled); }
  void end() override { loop.end(); }

  void say(const QString& text) override;
  void show_progress(double done, double total) override;
  bool can_ask() const override;
  bool ask(const QString& question) override;

  EventLoop loop{*this};

 private:
  void deliver(Wait wait) override { loop.pump(wait); }
  void require_running() const override { loop.require_running(); }
  bool is_drawing() const override { return false; }
  void handled() override {}
  void heard_line() override {}
  void pumped(bool /*sleeps*/) override {}
  std::optional<Time> due() const override { return std::nullopt; }

  bool quiet_;
  bool shows_progress_;
  ProgressLine progress_;
};

/// Writes a line of words on standard error.
void write_error(const QString& text);

}  // namespace orvex
