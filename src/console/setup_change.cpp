#include "console/setup_change.h"

#include <QJsonArray>

#include "console/parameter_words.h"
#include "console/session.h"

namespace orvex {
namespace {

QString in_words(const Change& change) {
  return name_of(change.field) + ": " + shown_value(change.before) + " -> " +
         shown_value(change.after);
}

/// Throws if the scanner has something else than it was sent.
void require_taken(const PartialSetup& received, const PartialSetup& sent) {
  QStringList missed;
  for (const auto& [field, has, wanted] : differences(received, sent)) {
    missed +=
        name_of(field) + " (" + shown_value(has) + " in place of " + shown_value(wanted) + ")";
  }
  if (missed.empty()) return;
  throw Failure{exit_code::scanner_failed, "The scanner did not take " + missed.join(", ")};
}

}  // namespace

Outcome change_setup(Session& session, const Options& options, const PartialSetup& wanted) {
  const PartialSetup before = session.receive();
  auto changes = differences(before, wanted);
  if (changes.empty()) {
    session.console.say("Nothing differs; nothing is sent.");
    return outcome_of(session, changes);
  }
  if (options.dry_run) {
    session.console.say("This would change; nothing is sent.");
    return outcome_of(session, changes);
  }
  PartialSetup sent = before;
  sent.take(wanted);
  session.send(sent);
  const PartialSetup after = session.receive();
  require_taken(after, sent);
  for (Change& change : changes) change.after = after.value(change.field);
  return outcome_of(session, changes);
}

Outcome outcome_of(const Session& session, const std::vector<Change>& changes) {
  Outcome outcome{session.place(), {}};
  QJsonArray list;
  for (const Change& change : changes) {
    list += QJsonObject{{"name", name_of(change.field)},
                        {"before", json_value(change.before)},
                        {"after", json_value(change.after)}};
    outcome.lines += in_words(change);
  }
  outcome.document["changed"] = list;
  return outcome;
}

}  // namespace orvex
