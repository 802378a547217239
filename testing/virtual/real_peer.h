#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "transfer/file_engine.h"

namespace orvex::testing {

/// A raw pseudo-terminal: what one end writes the other reads. Closes both ends.
class Pty {
 public:
  /// Throws std::system_error if the system has none left.
  Pty();
  ~Pty();
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;
  int master() const { return master_; }
  int slave() const { return slave_; }
  void close_slave();

 private:
  int master_ = -1;
  int slave_ = -1;
};

/// Starts a program of the path in `folder`, reading and writing `fd`. Returns its process id.
pid_t start_on(int fd, const std::string& folder, const std::vector<std::string>& command);

/// Waits for a process; its exit status, or -1 after `limit`, when it is killed.
int wait_for(pid_t process, Time limit);

/// Steady time of this machine.
Time steady_now();

/// Drives `engine` in real time on `fd` until it has finished, the other end is gone or `until`
/// has come; cancels it at `cancel_at`.
void drive(FileEngine& engine, int fd, Time until, Time cancel_at = Time::max());

}  // namespace orvex::testing
