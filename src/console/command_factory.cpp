#include "console/commands.h"
#include "console/session.h"
#include "console/setup_change.h"

namespace orvex {
namespace {

/// A scanner whose setup can't be read may be in need of the very thing.
PartialSetup setup_before(Session& session) {
  try {
    return session.receive();
  } catch (const Failure& failure) {
    if (!session.link.MSComm1.PortOpen()) throw;
    session.console.say("The setup before can't be read (" + failure.text + ")");
    return {};
  }
}

}  // namespace

Outcome run_factory(Session& session, const Options& options) {
  if (!options.yes && !session.console.can_ask()) {
    throw Failure{exit_code::wrong_use, "There is nobody to ask; --yes answers"};
  }
  session.connect(options);
  const QString question =
      "Restore the factory setup of the scanner on " + session.place_in_words() + "?";
  if (!options.yes && !session.console.ask(question)) return outcome_of(session, {});
  const PartialSetup before = setup_before(session);
  const PartialSetup after = session.factory_default();
  return outcome_of(session, differences(before, after));
}

}  // namespace orvex
