#include "testing/virtual/virtual_windows.h"

#include <algorithm>
#include <stdexcept>

namespace orvex::testing {
namespace {

constexpr Time longest_test = 6h;
constexpr int most_pumps = 20'000'000;

/// What a box gives that is taken down.
Answer refusal(Buttons buttons) {
  switch (buttons) {
    case Buttons::ok:
      return Answer::ok;
    case Buttons::retry_cancel:
      return Answer::cancel;
    case Buttons::yes_no:
      return Answer::no;
  }
  return Answer::no;
}

bool fits(Buttons buttons, Answer answer) {
  switch (buttons) {
    case Buttons::ok:
      return answer == Answer::ok;
    case Buttons::retry_cancel:
      return answer == Answer::retry || answer == Answer::cancel;
    case Buttons::yes_no:
      return answer == Answer::yes || answer == Answer::no;
  }
  return false;
}

}  // namespace

void VirtualWindows::at(Time time, std::function<void()> action) {
  const auto behind = std::ranges::upper_bound(actions_, time, {}, &Action::at);
  actions_.insert(behind, {time, std::move(action)});
}

std::string VirtualWindows::box_texts() const {
  std::string texts;
  for (const auto& shown : boxes) texts += "[" + shown.box.text + "]";
  std::ranges::replace(texts, '\r', '/');
  return texts;
}

void VirtualWindows::handle(const std::function<void()>& handler) {
  try {
    handler();
  } catch (const Ended&) {
    if (!ended) throw;
  }
}

void VirtualWindows::idle(Time span) {
  const Time until = now_ + span;
  handle([&] {
    at(until, [] {});
    while (now_ < until) pump(Wait::for_event);
  });
}

void VirtualWindows::pump(Wait wait) {
  if (ended) throw Ended{};
  if (++pumps > most_pumps) throw std::logic_error("a wait that burns its time");
  bool delivered = deliver();
  while (!delivered && wait == Wait::for_event && !ended) {
    advance(longest_test);
    delivered = deliver();
  }
  if (ended) throw Ended{};
}

Answer VirtualWindows::MsgBox(const MessageBox& box) {
  if (ended) throw Ended{};
  UserAnswer user{refusal(box.buttons)};
  // A script may hold an answer to a box with OK alone, to say how long it stands.
  const bool scripted = !answers.empty() && fits(box.buttons, answers.front().answer);
  if (scripted) {
    user = answers.front();
    answers.pop_front();
  } else if (box.buttons != Buttons::ok) {
    throw std::logic_error("nobody answers the box: " + box.text);
  }
  const std::size_t place = boxes.size();
  boxes.push_back({box, now_, user.answer});
  open_boxes_.push_back({box.owner, false});
  OpenBox& shown = open_boxes_.back();  // a deque keeps its place while others come and go behind
  box_is_up(box);
  if (user.after > Time{}) {
    const Time until = now_ + user.after;
    at(until, [] {});
    while (now_ < until && !shown.dismissed) pump(Wait::for_event);
  }
  if (shown.dismissed) boxes[place].answer = refusal(box.buttons);
  open_boxes_.pop_back();
  return boxes[place].answer;
}

void VirtualWindows::dismiss_boxes(Owner owner) {
  for (auto& box : open_boxes_) box.dismissed = box.dismissed || box.owner == owner;
}

std::optional<std::filesystem::path> VirtualWindows::show_open(const FileDialog& dialog) {
  return next_file(dialog);
}

std::optional<std::filesystem::path> VirtualWindows::show_save(const FileDialog& dialog) {
  return next_file(dialog);
}

std::optional<std::filesystem::path> VirtualWindows::next_file(const FileDialog& dialog) {
  std::string text(dialog.title);
  for (const auto filter : {dialog.first_filter, dialog.second_filter}) {
    text += '|';
    text += filter;
  }
  dialogs.push_back(text);
  if (files.empty()) throw std::logic_error("nobody answers the dialog: " + text);
  auto file = files.front();
  files.pop_front();
  const Time until = now_ + file_dialog_time;
  if (until > now_) at(until, [] {});
  while (now_ < until) pump(Wait::for_event);
  return file;
}

bool VirtualWindows::deliver() {
  bool delivered = false;
  for (std::size_t i = 0; i < actors_.size(); ++i) delivered |= actors_[i]->act();
  delivered |= run_scheduled();
  delivered |= run_actions();
  return delivered;
}

bool VirtualWindows::run_scheduled() {
  bool ran = false;
  for (std::size_t i = 0; i < scheduled_.size() && !ended; ++i) {
    const auto due = scheduled_[i]->due();
    if (!due || *due > now_) continue;
    handle([&] { scheduled_[i]->run(); });
    ran = true;
  }
  return ran;
}

bool VirtualWindows::run_actions() {
  bool ran = false;
  while (!actions_.empty() && actions_.front().at <= now_ && !ended) {
    const auto action = std::move(actions_.front());
    actions_.pop_front();
    handle(action.run);
    ran = true;
  }
  return ran;
}

void VirtualWindows::advance(Time limit) {
  std::optional<Time> next;
  const auto consider = [&](std::optional<Time> due) {
    if (due && (!next || *due < *next)) next = due;
  };
  for (const Actor* actor : actors_) consider(actor->due());
  for (const Scheduled* scheduled : scheduled_) consider(scheduled->due());
  if (!actions_.empty()) consider(actions_.front().at);
  if (!next) throw std::logic_error("a wait for an event that never comes");
  if (*next > limit) throw std::logic_error("a test without an end");
  now_ = std::max(now_, *next);
}

}  // namespace orvex::testing
