#pragma once

#include <QStringList>
#include <memory>
#include <vector>

#include "console/commands.h"
#include "console/console.h"
#include "console/escape.h"
#include "console/session.h"
#include "testing/virtual/desk.h"

namespace orvex::testing {

/// A console on the virtual clock, with a user who answers as told.
class VirtualConsole final : public Console {
 public:
  explicit VirtualConsole(VirtualWindows& windows) : windows_(windows) {}

  bool answer = false;  ///< to all questions
  QStringList said;

  Time now() const override { return windows_.now(); }
  void schedule(Scheduled& scheduled) override { windows_.schedule(scheduled); }
  void end() override { windows_.end(); }
  void say(const QString& text) override { said += text; }
  void show_progress(double /*done*/, double /*total*/) override {}
  bool can_ask() const override { return true; }
  bool ask(const QString& question) override {
    said += question;
    return answer;
  }

 private:
  void deliver(Wait wait) override { windows_.pump(wait); }
  void require_running() const override {
    if (windows_.ended) throw Ended{};
  }

  VirtualWindows& windows_;
};

/// Commands at a scanner on the virtual line, one after the other.
struct CommandDesk : Surroundings {
  /// Runs a command line: its document as JSON, or "code: text" of its failure.
  std::string run(const std::vector<std::string>& words) {
    // The clock calls the timers of earlier sessions, too.
    sessions.push_back(std::make_unique<Session>(console, line, loading.sender(), folder.path()));
    try {
      const Options options = parse_options(words);
      const auto command = std::ranges::find(commands(), options.command, &Command::name);
      const Outcome outcome = command->run(*sessions.back(), options);
      sessions.back()->leave();
      return json_of(outcome.document).trimmed().toStdString();
    } catch (const Failure& failure) {
      sessions.back()->leave();
      return std::to_string(failure.code) + ": " + failure.text.toStdString();
    }
  }

  VirtualConsole console{windows};
  std::string settings = "9600,N,8,1";  ///< of a command that searches nothing
  std::vector<std::unique_ptr<Session>> sessions;
};

}  // namespace orvex::testing
