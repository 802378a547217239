#pragma once

#include <cstddef>
#include <vector>

#include "bench/upload_receivers.h"
#include "bench/zmodem_relay.h"

namespace orvex::bench {

/// An upload through a relayed line.
struct UploadJob {
  bool ours = true;       ///< else by sz
  bool firmware = false;  ///< data as firmware has it, else random
  std::size_t size = 0;   ///< bytes of the file
  LineKind there;         ///< to the receiver
  LineKind back;
  Peer peer = Peer::rz;
  testing::ReceiverScript script;  ///< of a loader
};

struct UploadResult {
  bool complete = false;  ///< the sender says so
  bool whole = false;     ///< what arrived is what was sent
  double seconds = 0;     ///< from the sender's start to its last byte on the line
  double ended = 0;       ///< seconds from the sender's start to its end
  double bytes = 0;       ///< sender to receiver
  double processor = 0;   ///< seconds of the sender
  double shown = 0;       ///< bytes that our bar shows at the end
  double received = 0;    ///< bytes that the receiver has stored
};

/// Runs the jobs in `lanes` processes side by side; gives their results in the same order.
std::vector<UploadResult> run_uploads(const std::vector<UploadJob>& jobs, std::size_t lanes);

}  // namespace orvex::bench
