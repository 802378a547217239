#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/time.h"

namespace orvex::simulator {

/// The part of the scanner that takes a firmware file from the line.
class Loader {
 public:
  virtual ~Loader() = default;
  virtual void hear(std::string_view bytes, Time now) = 0;
  /// What it has sent by now and was not asked for yet.
  virtual std::string say(Time now) = 0;
  /// When say() is wanted next; none where only bytes move it on.
  virtual std::optional<Time> due() const = 0;
  /// True once the transfer is over, for better or worse.
  virtual bool finished() const = 0;
  /// The whole file of a finished transfer; none after a failure.
  virtual std::optional<std::string> file() const = 0;
};

using MakeLoader = std::function<std::unique_ptr<Loader>(Time now)>;

}  // namespace orvex::simulator
