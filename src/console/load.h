#pragma once

#include "console/options.h"
#include "console/session.h"

namespace orvex {

/// One load of firmware by the commands of the upgrade, from the image to the scanner's new
/// revision. Each step throws Failure.
class Load {
 public:
  /// The session must outlive this.
  explicit Load(Session& session) : session_(session) {}

  /// Sends the image; returns when the scanner has it and the restart is due.
  void send(const Options& options);
  /// Looks for the scanner until it is back with the image's revision.
  void await_restart(int seconds, double image_revision);

  double transfer_seconds() const { return transfer_seconds_; }

 private:
  enum class Look { silent, old_revision, back };

  void watch_transfer();
  Failure not_started() const;
  Look look(double image_revision);

  Session& session_;
  double transfer_seconds_ = 0;
};

}  // namespace orvex
