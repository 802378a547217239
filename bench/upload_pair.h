#pragma once

#include <cstddef>
#include <vector>

#include "bench/zmodem_relay.h"

namespace orvex::bench {

/// An upload to rz through a relayed line.
struct UploadJob {
  bool ours = true;       ///< else by sz
  bool firmware = false;  ///< data as firmware has it, else random
  std::size_t size = 0;   ///< bytes of the file
  LineKind there;         ///< to rz
  LineKind back;
};

struct UploadResult {
  bool intact = false;   ///< the sender says so, and what arrived is what was sent
  double seconds = 0;    ///< from the sender's start to its last byte on the line
  double bytes = 0;      ///< sender to receiver
  double processor = 0;  ///< seconds of the sender
  double silence = 0;    ///< seconds from the death of the line back to the sender's end
};

/// Runs the jobs in `lanes` processes side by side; gives their results in the same order.
std::vector<UploadResult> run_uploads(const std::vector<UploadJob>& jobs, std::size_t lanes);

}  // namespace orvex::bench
