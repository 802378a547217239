#include <algorithm>
#include <iterator>

#include "console/commands.h"
#include "console/parameter_words.h"
#include "console/session.h"

namespace orvex {
namespace {

struct Row {
  const char* query;
  const char* caption;
};

constexpr Row identity[]{{"<APP1RV:>", "Application 1"}, {"<APP2RV:>", "Application 2"},
                         {"<HARDRV:>", "Hardware"},      {"<FINGER:>", "Model"},
                         {"<SERIAL:>", "Serial Number"}, {"<WEBSIT:>", "Web Site"}};

std::vector<Field> fields_of(const std::vector<std::string>& names) {
  std::vector<Field> fields;
  if (names.empty()) {
    std::ranges::transform(parameters(), std::back_inserter(fields), &Parameter::field);
  } else {
    std::ranges::transform(names, std::back_inserter(fields), field_named);
  }
  return fields;
}

QJsonObject document_of(const Session& session, const PartialSetup& setup,
                        const std::vector<Field>& fields) {
  const auto said = [&](const char* query) { return json_value(session.reply(query)); };
  QJsonObject values;
  for (const Field field : fields) values[name_of(field)] = json_value(setup.value(field));
  QJsonObject document = session.place();
  document["revisions"] = QJsonObject{{"application1", said("<APP1RV:>")},
                                      {"application2", said("<APP2RV:>")},
                                      {"hardware", said("<HARDRV:>")}};
  document["model"] = said("<FINGER:>");
  document["serial"] = said("<SERIAL:>");
  document["web"] = said("<WEBSIT:>");
  document["setup"] = values;
  return document;
}

QStringList identity_lines(const Session& session) {
  constexpr int caption_width = 15;
  QStringList lines{session.place_in_words()};
  for (const auto& [query, caption] : identity) {
    lines += QString(caption).leftJustified(caption_width) + shown_value(session.reply(query));
  }
  return lines + QStringList{QString()};
}

}  // namespace

Outcome run_show(Session& session, const Options& options) {
  constexpr int value_width = 8;
  const auto fields = fields_of(options.words);
  session.connect(options);
  const PartialSetup setup = session.receive_all();
  Outcome outcome{document_of(session, setup, fields), {}};
  if (options.words.empty()) outcome.lines = identity_lines(session);
  for (const Field field : fields) {
    outcome.lines += name_of(field) + " " +
                     shown_value(setup.value(field)).leftJustified(value_width) + " " +
                     caption_of(field) + ": " + meaning_of(setup, field);
  }
  return outcome;
}

}  // namespace orvex
