#include "console/commands.h"
#include "console/session.h"
#include "console/setup_change.h"
#include "console/setup_file.h"

namespace orvex {

Outcome run_send(Session& session, const Options& options) {
  const PartialSetup wanted = read_setup(session.console, options.file);
  session.connect(options);
  return change_setup(session, options, wanted);
}

}  // namespace orvex
