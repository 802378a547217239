#pragma once

#include "console/options.h"
#include "console/outcome.h"
#include "console/partial_setup.h"

namespace orvex {

class Session;

/// Brings the scanner of a connected session to what is wanted, unless the options only ask what
/// would change, and looks whether it has taken it. Nothing is sent if nothing differs.
Outcome change_setup(Session& session, const Options& options, const PartialSetup& wanted);

/// The outcome of a command that has changed this; `place` with the list of changes.
Outcome outcome_of(const Session& session, const std::vector<Change>& changes);

}  // namespace orvex
