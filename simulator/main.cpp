#include <sys/prctl.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <stdexcept>

#include "simulator/options.h"
#include "simulator/simulation.h"

namespace {

volatile std::sig_atomic_t stop = 0;

/// The signals that end the program come only inside its one wait.
void catch_signals() {
  sigset_t ending;
  sigemptyset(&ending);
  struct sigaction action {};
  action.sa_handler = [](int) { stop = 1; };
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    sigaddset(&ending, signal);
    sigaction(signal, &action, nullptr);
  }
  sigprocmask(SIG_BLOCK, &ending, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace

int main(int count, char** words) {
  using namespace orvex::simulator;
  try {
    const auto options = parse_options({words + 1, words + count});
    if (options.help) {
      std::fputs(usage().c_str(), stdout);
      return 0;
    }
    catch_signals();
    // The bytes of a paced line are due to the microsecond; 50 of them is what sleeps may take
    // longer.
    ::prctl(PR_SET_TIMERSLACK, 1UL);
    Simulation(options).run(stop);
    return 0;
  } catch (const std::invalid_argument& error) {
    std::fprintf(stderr, "orvex-simulator: %s (see --help)\n", error.what());
    return 2;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "orvex-simulator: %s\n", error.what());
    return 1;
  }
}
