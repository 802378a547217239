#pragma once

#include <QJsonObject>
#include <QString>
#include <filesystem>
#include <map>
#include <string>

#include "base/timer.h"
#include "console/console.h"
#include "console/failure.h"
#include "console/options.h"
#include "console/partial_setup.h"
#include "console/watched_line.h"
#include "link/line_exit.h"
#include "link/scanner_link.h"
#include "upgrade/upgrade.h"

namespace orvex {

/// The link to one scanner for one command, and what all commands do with it. A step that fails
/// throws Failure.
class Session {
  // What the link is made of.
  WatchedLine line_;
  ScannerSetup setup_;
  std::map<std::string, std::string> replies_;

 public:
  /// All references must outlive the session, `trace` as well unless it is null. `state_folder`
  /// holds the port configuration file.
  Session(Console& console, Line& line, EngineFactory make_engine,
          std::filesystem::path state_folder, Trace* trace = nullptr);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Opens the port and finds the scanner, or pings it at the given settings.
  void connect(const Options& options);
  /// Asks for the setup; what the scanner doesn't report isn't known.
  PartialSetup receive();
  /// The same with revisions, model, web address and serial number, as the window's "Receive".
  PartialSetup receive_all();
  /// Sends what is known, and moves the port to the line settings in it.
  void send(const PartialSetup& setup);
  /// Back to the factory's setup, which is received.
  PartialSetup factory_default();

  /// The reply to a query of this session, without its line end; none if it wasn't asked for.
  std::optional<QString> reply(const std::string& query) const;
  /// {"port", "device", "settings"} as they are.
  QJsonObject place() const;
  /// The same in words.
  QString place_in_words() const;
  /// A failure of the scanner: `what` failed, and why as far as the line tells.
  Failure failed(const QString& what) const;

  /// Keeps the event loop running for so long.
  void pause(int milliseconds);
  /// Leaves the line as the window's exit does.
  void leave() { exit_.close(); }

  const std::filesystem::path& state_folder() const { return state_folder_; }

  Console& console;
  ScannerLink link;
  Upgrade upgrade;
  bool restart_due = false;  ///< a load was complete, and the port is closed

 private:
  void scan();
  void ping(const std::string& settings);
  QString port_name() const;
  Failure not_available(const RunTimeError& error) const;
  PartialSetup reported() const;

  std::filesystem::path state_folder_;
  bool by_device_ = false;
  LineExit exit_;
  Timer pause_timer_;
};

}  // namespace orvex
