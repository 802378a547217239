#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/time.h"

namespace orvex::simulator {

/// A number of frames that a fault befalls; `always` never runs out.
inline constexpr int always = -1;

/// What a scanner can be told to do wrong. Counts are of frames heard at the right rate.
struct Faults {
  std::string only{};  ///< the faults befall only frames whose text begins with this; empty is all

  int silent = 0;     ///< frames that are neither taken nor answered
  int refused = 0;    ///< frames that are answered by NAK
  int ignored = 0;    ///< frames that set something and are answered, but not taken
  int lost_acks = 0;  ///< frames that are taken, with an answer that never leaves
  int late_acks = 0;  ///< frames whose ACK comes `late_by` later than usual
  Time late_by{};
  std::string junk_before_ack{};

  std::optional<std::string> other_reply{};  ///< comes in place of a reply and its line end
  std::optional<std::size_t> cut_reply{};    ///< a reply ends behind so many bytes
  bool reply_without_end = false;            ///< a reply lacks its CR LF
  std::size_t padded_reply = 0;              ///< a reply is filled up to so many bytes
  bool frame_without_end = false;            ///< the last frame in a reply lacks its EOT

  bool junk_at_wrong_rate = false;  ///< what is heard at a wrong rate is answered by junk
  int unplug_after = 0;             ///< the line goes at the so many-th frame; 0 is never
};

/// Sets a fault by its name, as "silent" or "late-ack=1500", for people at a console. A count that
/// is left out is `always`; the value of "only" is a text. False if there is no such fault or
/// value.
bool set_fault(Faults& faults, std::string_view name_and_value);

/// The names that set_fault() takes, each with what its value means.
std::vector<std::string_view> fault_names();

}  // namespace orvex::simulator
