#pragma once

#include <functional>
#include <string>

#include "support/desk.h"
#include "upgrade/scripted_receiver.h"

namespace orvex::test {

/// The whole tool with its ZMODEM sender, at a scanner that takes files by the scripted receiver.
struct ZmodemDesk : Desk {
  ZmodemDesk();

  /// A load from the menu to the return of the click, with Yes to the first question.
  void load(const std::string& image, bool fast);

  ReceiverScript script;  ///< of the receivers to come
  /// Called as the receiver has taken something, inside the line's turn.
  std::function<void()> taken = [] {};
  ScriptedReceiver receiver{ReceiverScript{}};  ///< the last one
};

/// A firmware image of this revision whose bytes look random, of `size` > 108 bytes.
std::string random_image(std::size_t size, std::uint32_t seed,
                         const std::string& revision = "4.00   ");

}  // namespace orvex::test
