#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/run_time_error.h"
#include "link/serial_control.h"
#include "simulator/loader.h"
#include "testing/virtual/scripted_receiver.h"

namespace orvex::testing {

/// Uploads between the tool's ZMODEM sender and a scripted receiver in the scanner.
struct Loading {
  ReceiverScript script;  ///< of the receivers to come
  /// Called as the receiver has taken something, inside the line's turn.
  std::function<void()> taken = [] {};
  ScriptedReceiver receiver{ReceiverScript{}};  ///< the last one
  int started = 0;                              ///< transfers that the tool has begun
  std::optional<RunTimeError> refusal;          ///< in place of a transfer that begins

  /// Both refer to this object.
  EngineFactory sender();
  simulator::MakeLoader loader();
};

/// A firmware image of this revision whose bytes look random, of `size` > 108 bytes.
std::string random_image(std::size_t size, std::uint32_t seed,
                         const std::string& revision = "4.00   ");

}  // namespace orvex::testing
