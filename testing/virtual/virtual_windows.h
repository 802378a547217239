#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/run_time_error.h"
#include "window/window_system.h"

namespace orvex::testing {

using namespace std::chrono_literals;

/// Something outside the tool that moves with the virtual clock.
class Actor {
 public:
  virtual ~Actor() = default;
  virtual std::optional<Time> due() const = 0;
  /// Does all that is due. True if the tool heard of it.
  virtual bool act() = 0;
};

/// What the user answers to a box, and how long the box stands before.
struct UserAnswer {
  Answer answer;
  Time after{};
};

/// A box as it was shown.
struct ShownBox {
  MessageBox box;
  Time at;
  Answer answer;
};

/// A window system on a virtual clock, with a user who follows a script. Nothing sleeps: the pump
/// moves the clock to the next event. A script that would hang, or leaves a question without an
/// answer, ends by a std::logic_error.
class VirtualWindows final : public WindowSystem {
 public:
  // The script.
  /// Lets the user do something at a moment, inside the first pump from then on.
  void at(Time time, std::function<void()> action);
  std::deque<UserAnswer> answers;  ///< to the coming questions; boxes with OK alone need none
  std::deque<std::optional<std::filesystem::path>> files;  ///< for the coming file dialogs
  Time file_dialog_time{};                                 ///< for which a file dialog stands
  void join(Actor& actor) { actors_.push_back(&actor); }
  /// Called as a box comes up, before its answer.
  std::function<void(const MessageBox&)> box_is_up = [](const MessageBox&) {};

  // The record.
  std::vector<ShownBox> boxes;
  std::vector<std::string> dialogs;  ///< title and both filters of each, parted by "|"
  std::vector<std::string> addresses;
  int pumps = 0;
  bool ended = false;
  /// The texts of all boxes so far, each in brackets, with "/" for the ends of their lines.
  std::string box_texts() const;

  /// Runs a handler as the window system does, which is left quietly when the process ends.
  void handle(const std::function<void()>& handler);
  /// Pumps until the clock has moved on by `span`, as while the tool stands idle.
  void idle(Time span);

  Time now() const override { return now_; }
  void pump(Wait wait) override;
  Answer MsgBox(const MessageBox& box) override;
  void dismiss_boxes(Owner owner) override;
  std::optional<std::filesystem::path> show_open(const FileDialog& dialog) override;
  std::optional<std::filesystem::path> show_save(const FileDialog& dialog) override;
  int screen_width() const override { return 15360; }
  int screen_height() const override { return 11520; }
  void schedule(Scheduled& scheduled) override { scheduled_.push_back(&scheduled); }
  void open_address(std::string_view text) override { addresses.emplace_back(text); }
  void end() override { ended = true; }

 private:
  struct Action {
    Time at;
    std::function<void()> run;
  };
  struct OpenBox {
    Owner owner;
    bool dismissed;
  };

  std::optional<std::filesystem::path> next_file(const FileDialog& dialog);
  bool deliver();
  bool run_actions();
  bool run_scheduled();
  void advance(Time limit);

  Time now_{};
  std::vector<Actor*> actors_;
  std::vector<Scheduled*> scheduled_;
  std::deque<Action> actions_;
  std::deque<OpenBox> open_boxes_;
};

}  // namespace orvex::testing
