#pragma once

#include <QString>
#include <bitset>
#include <functional>
#include <optional>
#include <vector>

#include "setup/scanner_setup.h"

namespace orvex {

/// A setup of which only some parameters are known: those that a scanner reported, a file names or
/// a user set.
class PartialSetup {
 public:
  PartialSetup() = default;
  /// What `apply` puts into a setup is known, whatever stood there. It is called twice.
  explicit PartialSetup(const std::function<void(ScannerSetup&)>& apply);

  bool knows(Field field) const { return known_[index(field)]; }
  bool knows_nothing() const { return known_.none(); }
  /// As it stands in a tag, texts unchanged; none if it isn't known.
  std::optional<QString> value(Field field) const;
  /// Takes over what the other one knows.
  void take(const PartialSetup& other);
  void take(Field field, const ScannerSetup& from);

  /// Of a field that isn't known it has some value.
  const ScannerSetup& values() const { return values_; }

 private:
  static std::size_t index(Field field) { return static_cast<std::size_t>(field); }

  ScannerSetup values_;
  std::bitset<field_count> known_;
};

/// A parameter whose value differs.
struct Change {
  Field field;
  std::optional<QString> before;
  std::optional<QString> after;
};

/// What of `wanted` differs from `present`, in the parameters' order. Delays that are numbers are
/// compared as such.
std::vector<Change> differences(const PartialSetup& present, const PartialSetup& wanted);

}  // namespace orvex
