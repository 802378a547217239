#include <QJsonArray>

#include "console/commands.h"
#include "console/parameter_words.h"
#include "console/session.h"
#include "console/setup_file.h"

namespace orvex {

Outcome run_diff(Session& session, const Options& options) {
  const PartialSetup file = read_setup(session.console, options.file);
  session.connect(options);
  Outcome outcome;
  QJsonArray list;
  for (const auto& [field, has, wanted] : differences(session.receive(), file)) {
    list += QJsonObject{
        {"name", name_of(field)}, {"scanner", json_value(has)}, {"file", json_value(wanted)}};
    outcome.lines +=
        name_of(field) + ": scanner " + shown_value(has) + ", file " + shown_value(wanted);
    outcome.code = exit_code::difference;
  }
  outcome.document["differences"] = list;
  return outcome;
}

}  // namespace orvex
