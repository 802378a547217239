#include "console/commands.h"

#include <array>

namespace orvex {

std::span<const Command> commands() {
  static constexpr std::array all{
      Command{"ports", "lists the ports and serial devices", Arguments::none, run_ports},
      Command{"find", "finds the scanner's rate", Arguments::none, run_find},
      Command{"show", "shows what the scanner says of itself, and its parameters", Arguments::names,
              run_show},
      Command{"set", "changes parameters of the scanner", Arguments::assignments, run_set},
      Command{"save", "saves the scanner's setup in a file", Arguments::file, run_save},
      Command{"send", "brings the scanner to a saved setup", Arguments::file, run_send},
      Command{"diff", "compares the scanner with a saved setup", Arguments::file, run_diff},
      Command{"factory", "restores the scanner's factory setup", Arguments::none, run_factory},
      Command{"load", "loads firmware into the scanner", Arguments::image, run_load},
  };
  return all;
}

}  // namespace orvex
