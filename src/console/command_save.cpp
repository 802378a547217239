#include "console/commands.h"
#include "console/parameter_words.h"
#include "console/session.h"
#include "console/setup_file.h"
#include "setupfiles/setup_files.h"

namespace orvex {
namespace {

/// A file with an initial value in it would change a scanner that it is sent to.
void require_all_reported(const PartialSetup& setup) {
  QStringList missing;
  for (const auto& row : parameters()) {
    if (row.field != Field::RSCTSE && !setup.knows(row.field)) missing += name_of(row.field);
  }
  if (missing.empty()) return;
  throw Failure{exit_code::scanner_failed,
                "Not saved: the scanner doesn't report " + missing.join(", ")};
}

}  // namespace

Outcome run_save(Session& session, const Options& options) {
  session.connect(options);
  const PartialSetup setup = session.receive();
  require_all_reported(setup);
  session.console.boxes.clear();
  session.console.file = options.file;
  mnusave_Click(session.console, setup.values());
  if (!session.console.boxes.empty()) {
    throw Failure{exit_code::file_error,
                  words_of(options.file) + ": " + session.console.last_error()};
  }
  return {session.place(), {session.place_in_words()}};
}

}  // namespace orvex
