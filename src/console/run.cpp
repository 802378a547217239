#include "console/run.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "base/run_time_error.h"
#include "console/commands.h"
#include "console/escape.h"
#include "console/loop_console.h"
#include "console/session.h"
#include "console/setup_file.h"
#include "console/trace.h"
#include "loop/end_request.h"
#include "loop/port_line.h"
#include "platform/ports.h"
#include "transfer/image_source.h"
#include "transfer/zmodem_sender.h"

namespace orvex {
namespace {

std::unique_ptr<FileEngine> make_sender(const std::filesystem::path& path, int rate, Time now) {
  return std::make_unique<ZmodemSender>(open_image(path), now, static_cast<std::uint32_t>(rate));
}

/// The trace is begun before anything is read, so it must not empty what the command works on.
void require_own_file(const Options& options) {
  for (const std::filesystem::path& other : {options.file, std::filesystem::path(options.device)}) {
    std::error_code unknown;
    if (options.trace == other || std::filesystem::equivalent(options.trace, other, unknown)) {
      throw Failure{exit_code::wrong_use, "The trace would overwrite " + words_of(other)};
    }
  }
}

std::unique_ptr<Trace> open_trace(const Clock& clock, const Options& options) {
  const std::filesystem::path& path = options.trace;
  if (path.empty()) return nullptr;
  require_own_file(options);
  try {
    return std::make_unique<Trace>(clock, path);
  } catch (const RunTimeError& error) {
    throw Failure{exit_code::file_error,
                  words_of(path) + ": " + QString::fromLocal8Bit(error.text.c_str())};
  }
}

Outcome run_command(const Options& options, LoopConsole& console, Trace* trace) {
  PortLine line(console.loop, platform::state_folder(), options.device);
  Session session(console, line, make_sender, platform::state_folder(), trace);
  on_end_request(console.loop, [&] {
    console.loop.handle([&] {
      session.leave();
      console.end();
    });
  });
  const auto command = std::ranges::find(commands(), options.command, &Command::name);
  Outcome outcome = command->run(session, options);
  session.leave();
  return outcome;
}

Outcome outcome_of(const Failure& failure) {
  write_error(failure.text);
  return {
      {{"error", QJsonObject{{"code", failure.code}, {"text", failure.text}}}}, {}, failure.code};
}

/// The code of the outcome, or of a failure if it couldn't be written.
int print(const Outcome& outcome, bool json) {
  QByteArray text;
  if (json) {
    text = json_of(outcome.document);
  } else {
    for (const QString& line : outcome.lines) text += printable(line).toUtf8() + '\n';
  }
  std::fputs(text.constData(), stdout);
  if (std::fflush(stdout) == 0) return outcome.code;
  write_error("Standard output took no more");
  return outcome.code == exit_code::done ? exit_code::file_error : outcome.code;
}

Outcome run_to_any_end(const Options& options, LoopConsole& console, Trace* trace) {
  try {
    return run_command(options, console, trace);
  } catch (const Failure& failure) {
    return outcome_of(failure);
  } catch (const Ended&) {
    console.show_progress(0, 0);
    return outcome_of(Failure{exit_code::interrupted, "interrupted"});
  }
}

Outcome run_options(const Options& options) {
  LoopConsole console(options.quiet);
  const auto trace = open_trace(console, options);
  Outcome outcome = run_to_any_end(options, console, trace.get());
  if (trace && !trace->flush()) write_error("The trace is incomplete: the file took no more");
  return outcome;
}

}  // namespace

int run_program(const std::vector<std::string>& arguments) {
  bool json = std::ranges::find(arguments, "--json") != arguments.end();
  try {
    const Options options = parse_options(arguments);
    json = options.json;
    const Outcome outcome = run_options(options);
    end_at_once(exit_code::interrupted);
    return print(outcome, json);
  } catch (const Help& help) {
    std::fputs(help.text.toUtf8().constData(), stdout);
    return std::fflush(stdout) == 0 ? exit_code::done : exit_code::file_error;
  } catch (const Failure& failure) {
    return print(outcome_of(failure), json);
  }
}

}  // namespace orvex
