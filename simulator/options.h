#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/scanner.h"

namespace orvex::simulator {

/// What the command line of the program asks for.
struct ProgramOptions {
  std::filesystem::path link;
  Options scanner;
  int rate = 9600;
  Faults faults;
  bool paced = false;           ///< bytes take their time on the line, both ways
  bool manual_restart = false;  ///< a loaded file waits for the command `restart`
  std::filesystem::path save_image;
  std::string receiver = "rz";
  bool help = false;
};

/// Throws std::invalid_argument, in words for the user, if the command line makes no sense.
ProgramOptions parse_options(const std::vector<std::string_view>& arguments);

/// What `--help` prints.
std::string usage();

}  // namespace orvex::simulator
