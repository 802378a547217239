#pragma once

#include <QJsonValue>
#include <QString>
#include <optional>
#include <string>
#include <vector>

#include "console/partial_setup.h"

namespace orvex {

/// The parameter of this name, in any case. Throws Failure, wrong use, if there is none.
Field field_named(const std::string& name);

/// Reads words of the form NAME=VALUE, in UTF-8. A value is the one of the tag or its meaning, in
/// any case; of a text, what the scanner takes. Throws Failure, wrong use, at the first that isn't
/// right.
PartialSetup read_assignments(const std::vector<std::string>& words);

QString name_of(Field field);
/// What the parameter is, as on the main window: "Baud Rate".
QString caption_of(Field field);
/// What its value means, as "9600 Bps"; of a text, what kind it is.
QString meaning_of(const PartialSetup& setup, Field field);

/// The value as JSON, null if there is none.
QJsonValue json_value(const std::optional<QString>& value);
/// The value for people: "-" where there is none, a pair of quotes for an empty text.
QString shown_value(const std::optional<QString>& value);

}  // namespace orvex
