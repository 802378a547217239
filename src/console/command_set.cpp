#include "console/commands.h"
#include "console/parameter_words.h"
#include "console/session.h"
#include "console/setup_change.h"

namespace orvex {

Outcome run_set(Session& session, const Options& options) {
  const PartialSetup wanted = read_assignments(options.words);
  session.connect(options);
  return change_setup(session, options, wanted);
}

}  // namespace orvex
