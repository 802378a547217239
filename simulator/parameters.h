#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace orvex::simulator {

/// The values of the scanner's 25 parameters. Starts at the factory values.
class Parameters {
 public:
  Parameters();

  /// Takes one or more set tags `<NAME=value>` that follow each other without a gap. False, with
  /// nothing changed, if one of them isn't understood.
  bool apply(std::string_view tags);

  /// `name` must be one of the 25.
  const std::string& operator[](std::string_view name) const { return values_.find(name)->second; }

  /// The reply to `<SETPAR:>` without its line end: every tag in a frame of its own.
  std::string frames() const;

  bool operator==(const Parameters&) const = default;

 private:
  std::map<std::string, std::string, std::less<>> values_;
};

}  // namespace orvex::simulator
