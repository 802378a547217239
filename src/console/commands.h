#pragma once

#include <span>
#include <string_view>

#include "console/options.h"
#include "console/outcome.h"

namespace orvex {

class Session;

/// What stands behind a command on the command line.
enum class Arguments { none, names, assignments, file, image };

struct Command {
  std::string_view name;
  std::string_view help;
  Arguments arguments;
  /// Runs the whole command, from the check of its arguments on. Throws Failure.
  Outcome (*run)(Session& session, const Options& options);
};

/// All commands, in the order in which help names them.
std::span<const Command> commands();

// One file each: command_*.cpp.
Outcome run_ports(Session& session, const Options& options);
Outcome run_find(Session& session, const Options& options);
Outcome run_show(Session& session, const Options& options);
Outcome run_set(Session& session, const Options& options);
Outcome run_save(Session& session, const Options& options);
Outcome run_send(Session& session, const Options& options);
Outcome run_diff(Session& session, const Options& options);
Outcome run_factory(Session& session, const Options& options);
Outcome run_load(Session& session, const Options& options);

}  // namespace orvex
