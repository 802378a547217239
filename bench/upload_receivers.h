#pragma once

#include <sys/types.h>

#include <string>

#include "testing/virtual/scripted_receiver.h"

namespace orvex::bench {

enum class Peer {
  rz,         ///< of lrzsz
  loader,     ///< a scripted one, in real time
  zmodem_js,  ///< of npm, run by node
};

/// Whether the peer is installed. zmodem.js is looked for in build/peers/node_modules.
bool is_there(Peer peer);

/// Starts a receiver on the terminal `fd` that stores the file as `folder`/upload.bin; gives its
/// process id. It ends with the session, or when the other end of the terminal is closed.
pid_t start_receiver(Peer peer, const testing::ReceiverScript& script, int fd,
                     const std::string& folder);

}  // namespace orvex::bench
