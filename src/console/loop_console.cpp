#include "console/loop_console.h"

#include <cstdio>

#include "console/escape.h"
#include "platform/process.h"

namespace orvex {

using platform::Stream;

LoopConsole::LoopConsole(bool quiet)
    : quiet_(quiet), shows_progress_(!quiet && platform::is_terminal(Stream::error)) {}

void LoopConsole::say(const QString& text) {
  if (!quiet_) write_error(text);
}

void LoopConsole::show_progress(double done, double total) {
  if (!shows_progress_) return;
  const auto line = progress_.draw(done, total, now());
  if (!line.empty()) std::fputs(line.c_str(), stderr);
}

bool LoopConsole::can_ask() const {
  return platform::is_terminal(Stream::input) && platform::is_terminal(Stream::error);
}

bool LoopConsole::ask(const QString& question) {
  const QByteArray text = (printable(question) + " [y/N] ").toUtf8();
  std::fputs(text.constData(), stderr);
  const auto answer = platform::read_line();
  if (!answer) {
    std::fputs("\n", stderr);
    loop.pump(Wait::no);  // hears of a request to end
    return false;
  }
  return *answer == "y" || *answer == "Y" || *answer == "yes" || *answer == "Yes";
}

void write_error(const QString& text) {
  const QByteArray line = ("orvexctl: " + printable(text) + "\n").toUtf8();
  std::fputs(line.constData(), stderr);
}

}  // namespace orvex
