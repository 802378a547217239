#pragma once

#include <string>
#include <vector>

namespace orvex {

/// Runs the program with the words behind its name and gives its exit code. A QCoreApplication must
/// exist.
int run_program(const std::vector<std::string>& arguments);

}  // namespace orvex
