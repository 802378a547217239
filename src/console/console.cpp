#include "console/console.h"

#include <algorithm>

namespace orvex {

QString Console::last_error() const {
  const auto box = std::find_if(boxes.rbegin(), boxes.rend(), [](const MessageBox& shown) {
    return shown.buttons == Buttons::ok;
  });
  if (box == boxes.rend()) return {};
  return QString::fromLocal8Bit(box->text.c_str()).replace('\r', ' ').trimmed();
}

bool Console::has_shown(std::string_view title) const {
  return std::ranges::find(boxes, title, &MessageBox::title) != boxes.end();
}

void Console::pump(Wait wait) {
  deliver(wait);
  if (give_up_at && now() >= *give_up_at) throw TimeUp{};
}

Answer Console::MsgBox(const MessageBox& box) {
  require_running();
  boxes.push_back(box);
  switch (box.buttons) {
    case Buttons::retry_cancel:
      return Answer::cancel;
    case Buttons::yes_no:
      // Who gives the command wants the load; an older image has to be wanted besides.
      return box.title != older_image_title || allow_older ? Answer::yes : Answer::no;
    case Buttons::ok:
      break;
  }
  return Answer::ok;
}

std::optional<std::filesystem::path> Console::show_open(const FileDialog& /*dialog*/) {
  return file;
}

std::optional<std::filesystem::path> Console::show_save(const FileDialog& /*dialog*/) {
  return file;
}

}  // namespace orvex
