#include "console/parameter_words.h"

#include <QStringConverter>
#include <QStringList>
#include <algorithm>

#include "console/failure.h"

namespace orvex {
namespace {

constexpr int most_digits = 3;
constexpr int most_characters = 40;

QString text_of(std::string_view text) {
  return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

Failure wrong(const QString& text) {
  return {exit_code::wrong_use, text};
}

/// The user's words; none if they are no UTF-8.
std::optional<QString> decoded(std::string_view utf8) {
  QStringDecoder decoder(QStringDecoder::Utf8);
  QString text = decoder(QByteArrayView(utf8.data(), static_cast<qsizetype>(utf8.size())));
  if (decoder.hasError()) return std::nullopt;
  return text;
}

QString list_of_values(const Parameter& row) {
  QStringList values;
  for (const auto& choice : row.choices) {
    values += text_of(choice.value) + " (" + text_of(choice.caption) + ")";
  }
  return values.join(", ");
}

std::size_t choice_of(const Parameter& row, const QString& value) {
  const auto is = [&](std::string_view text) {
    return value.compare(text_of(text), Qt::CaseInsensitive) == 0;
  };
  for (std::size_t i = 0; i < row.choices.size(); ++i) {
    if (is(row.choices[i].value) || is(row.choices[i].caption)) return i;
  }
  throw wrong(text_of(row.name) + " has no value " + value + ". There are " + list_of_values(row));
}

bool is_control(QChar c) {
  return c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() < 0xA0);
}

/// A delay as it goes out.
std::u16string delay_value(const QString& name, const QString& value) {
  const bool digits = std::ranges::all_of(value, [](QChar c) { return c >= '0' && c <= '9'; });
  if (!digits || value.size() > most_digits) {
    throw wrong(name + " takes up to 3 digits, not " + value);
  }
  return value.isEmpty() ? std::u16string{}
                         : value.rightJustified(most_digits, '0').toStdU16String();
}

std::u16string text_value(const Parameter& row, const QString& value) {
  const QString name = text_of(row.name);
  if (row.field == Field::RSDELY) return delay_value(name, value);
  if (std::ranges::any_of(value, is_control)) {
    throw wrong(name + " takes control characters by name, as [CR]");
  }
  if (std::ranges::any_of(value, [](QChar c) { return c.unicode() > 0xFF; })) {
    throw wrong(name + " takes letters of ISO 8859-1 only, not " + value);
  }
  if (value.size() > most_characters) throw wrong(name + " takes up to 40 characters");
  return value.toStdU16String();
}

}  // namespace

Field field_named(const std::string& name) {
  QStringList names;
  for (const auto& row : parameters()) {
    names += text_of(row.name);
    if (names.back().compare(QString::fromStdString(name), Qt::CaseInsensitive) == 0) {
      return row.field;
    }
  }
  throw wrong("There is no parameter " + QString::fromStdString(name) + ". There are " +
              names.join(", "));
}

PartialSetup read_assignments(const std::vector<std::string>& words) {
  PartialSetup wanted;
  for (const auto& word : words) {
    const auto equals = word.find('=');
    if (equals == std::string::npos) {
      throw wrong("Not of the form NAME=VALUE: " + QString::fromStdString(word));
    }
    const Field field = field_named(word.substr(0, equals));
    const Parameter& row = parameter(field);
    const auto value = decoded(std::string_view(word).substr(equals + 1));
    if (!value) throw wrong("The value of " + text_of(row.name) + " is no UTF-8");
    if (wanted.knows(field)) throw wrong(text_of(row.name) + " is named twice");
    ScannerSetup setup;
    if (row.is_text()) {
      setup.text(field) = text_value(row, *value);
    } else {
      setup.choose(field, choice_of(row, *value));
    }
    wanted.take(field, setup);
  }
  return wanted;
}

QString name_of(Field field) {
  return text_of(parameter(field).name);
}

QString caption_of(Field field) {
  const auto frame = std::ranges::find(frames(), parameter(field).frame, &FrameLayout::name);
  QString caption = text_of(frame->caption);
  // What the window says of a text's length isn't its limit.
  if (const auto note = caption.indexOf(" ("); note > 0) caption.truncate(note);
  if (frame->inside.empty()) return caption;
  const auto outer = std::ranges::find(frames(), frame->inside, &FrameLayout::name);
  return text_of(outer->caption) + ", " + caption;
}

QString meaning_of(const PartialSetup& setup, Field field) {
  const Parameter& row = parameter(field);
  if (!setup.knows(field)) return "not reported";
  if (!row.is_text()) return text_of(row.choices[setup.values().choice(field)].caption);
  return field == Field::RSDELY ? "msec" : "text";
}

QJsonValue json_value(const std::optional<QString>& value) {
  return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

QString shown_value(const std::optional<QString>& value) {
  if (!value) return "-";
  return value->isEmpty() ? QString("\"\"") : *value;
}

}  // namespace orvex
