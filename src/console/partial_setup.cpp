#include "console/partial_setup.h"

#include <algorithm>

namespace orvex {
namespace {

/// No text that one byte a character can make.
const std::u16string no_text(1, 0xFFFF);

/// A setup that differs from the initial one in each field.
ScannerSetup other_setup() {
  ScannerSetup setup;
  for (const auto& row : parameters()) {
    if (row.is_text()) {
      setup.text(row.field) = no_text;
    } else {
      setup.choose(row.field, (row.initial + 1) % row.choices.size());
    }
  }
  return setup;
}

bool is_number(const QString& text) {
  return !text.isEmpty() && std::ranges::all_of(text, [](QChar c) { return c >= '0' && c <= '9'; });
}

QString without_zeros(const QString& number) {
  qsizetype zeros = 0;
  while (zeros < number.size() - 1 && number[zeros] == '0') ++zeros;
  return number.mid(zeros);
}

bool same(Field field, const std::optional<QString>& a, const std::optional<QString>& b) {
  if (field == Field::RSDELY && a && b && is_number(*a) && is_number(*b)) {
    return without_zeros(*a) == without_zeros(*b);
  }
  return a == b;
}

}  // namespace

PartialSetup::PartialSetup(const std::function<void(ScannerSetup&)>& apply) {
  ScannerSetup other = other_setup();
  apply(values_);
  apply(other);
  for (const auto& row : parameters()) {
    known_[index(row.field)] = row.is_text() ? values_.text(row.field) == other.text(row.field)
                                             : values_.choice(row.field) == other.choice(row.field);
  }
}

std::optional<QString> PartialSetup::value(Field field) const {
  if (!knows(field)) return std::nullopt;
  if (parameter(field).is_text()) return QString::fromStdU16String(values_.text(field));
  const auto value = values_.value(field);
  return QString::fromLatin1(value.data(), static_cast<qsizetype>(value.size()));
}

void PartialSetup::take(const PartialSetup& other) {
  for (const auto& row : parameters()) {
    if (other.knows(row.field)) take(row.field, other.values_);
  }
}

void PartialSetup::take(Field field, const ScannerSetup& from) {
  known_.set(index(field));
  if (parameter(field).is_text()) {
    values_.text(field) = from.text(field);
  } else {
    values_.choose(field, from.choice(field));
  }
}

std::vector<Change> differences(const PartialSetup& present, const PartialSetup& wanted) {
  std::vector<Change> changes;
  for (const auto& row : parameters()) {
    if (!wanted.knows(row.field)) continue;
    const auto before = present.value(row.field);
    const auto after = wanted.value(row.field);
    if (!same(row.field, before, after)) changes.push_back({row.field, before, after});
  }
  return changes;
}

}  // namespace orvex
