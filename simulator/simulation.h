#pragma once

#include <csignal>
#include <deque>
#include <optional>

#include "simulator/command_console.h"
#include "simulator/options.h"
#include "simulator/pty_device.h"
#include "simulator/scanner.h"

namespace orvex::simulator {

/// The scanner at its pseudo-terminal in real time.
class Simulation {
 public:
  explicit Simulation(const ProgramOptions& options);

  /// Runs to `quit` or until `stop` is set by a signal handler.
  void run(const volatile std::sig_atomic_t& stop);

 private:
  struct Outgoing {
    char byte;
    int rate;
  };
  /// A byte from the PC and the moment at which a line would have brought it.
  struct Incoming {
    char byte;
    int rate;
    Time at;
  };

  std::unique_ptr<Loader> make_loader(Time now);
  std::optional<Time> next_moment() const;
  bool wait();
  void listen();
  void hear_what_is_through();
  void speak();
  void send_outgoing();
  void look_after_line();
  void look_after_load();

  ProgramOptions options_;
  int receiver_output_ = -1;
  Scanner scanner_;
  PtyDevice device_;
  CommandConsole console_;
  std::deque<Outgoing> outgoing_;
  Time next_byte_at_{};
  std::deque<Incoming> incoming_;
  Time incoming_free_at_{};
  Time last_heard_{};
  int line_rate_ = 0;
  bool loading_ = false;
  bool file_told_ = false;
};

}  // namespace orvex::simulator
