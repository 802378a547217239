#include "simulator/command_console.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>

#include "simulator/printable.h"

namespace orvex::simulator {
namespace {

/// "on" is `always`, "off" is 0; none if the text is no count.
std::optional<int> count_of(std::string_view text) {
  if (text == "on") return always;
  if (text == "off") return 0;
  int count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error != std::errc{} || end != text.data() + text.size() || count < 0) return std::nullopt;
  return count;
}

void refuse(std::string_view command) {
  std::printf("not understood: %s\n", printable(std::string(command)).c_str());
}

}  // namespace

bool CommandConsole::obey() {
  constexpr std::size_t longest_line = 4096;
  std::array<char, 512> piece{};
  const auto got = ::read(descriptor_, piece.data(), piece.size());
  if (got < 0 && errno == EINTR) return true;
  if (got <= 0) {
    descriptor_ = -1;
    return true;
  }
  unread_.append(piece.data(), static_cast<std::size_t>(got));
  for (auto end = unread_.find('\n'); end != std::string::npos; end = unread_.find('\n')) {
    const std::string line = unread_.substr(0, end);
    unread_.erase(0, end + 1);
    if (!obey(line)) return false;
  }
  if (unread_.size() > longest_line) unread_.clear();
  return true;
}

bool CommandConsole::obey(std::string_view line) {
  const auto blank = line.find(' ');
  const auto command = line.substr(0, blank);
  const auto value = blank == std::string_view::npos ? std::string_view{} : line.substr(blank + 1);
  if (command == "quit") return false;
  if (command == "plug") {
    device_.plug();
    std::printf("plugged in at %s\n", device_.path().c_str());
  } else if (command == "unplug") {
    device_.unplug();
    std::printf("unplugged\n");
  } else if (!command.empty()) {
    obey_scanner(command, value);
  }
  return true;
}

void CommandConsole::obey_scanner(std::string_view command, std::string_view value) {
  const auto count = count_of(value);
  bool understood = true;
  if (command == "silent" && count) {
    scanner_.faults.silent = *count;
  } else if (command == "nak" && count) {
    scanner_.faults.refused = *count;
  } else if (command == "fault" && value == "none") {
    scanner_.faults = {};
  } else if (command == "fault") {
    understood = set_fault(scanner_.faults, value);
  } else if (command == "rate") {
    understood = scanner_.parameters.apply("<RSBAUD=" + std::string(value) + ">");
  } else if (command == "set") {
    understood = scanner_.parameters.apply(value);
  } else if (command == "restart") {
    scanner_.restart();
    std::printf("restarted at %d as %s\n", scanner_.rate(),
                printable(scanner_.options.identity.application1).c_str());
  } else {
    understood = false;
  }
  if (!understood) refuse(command);
}

}  // namespace orvex::simulator
