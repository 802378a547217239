#include "console/commands.h"
#include "console/session.h"

namespace orvex {

Outcome run_find(Session& session, const Options& options) {
  session.connect(options);
  return {session.place(), {session.place_in_words()}};
}

}  // namespace orvex
