#include "console/run.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "base/network_address.h"
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
#include "platform/process.h"
#include "transfer/image_source.h"
#include "transfer/zmodem_sender.h"

namespace orvex {
namespace {

std::unique_ptr<FileEngine> make_sender(const std::filesystem::path& path, int rate, Time now) {
  return std::make_unique<ZmodemSender>(open_image(path), now, static_cast<std::uint32_t>(rate));
}

std::unique_ptr<Trace> open_trace(const Clock& clock, const std::filesystem::path& path) {
  if (path.empty()) return nullptr;
  try {
    return std::make_unique<Trace>(clock, path);
  } catch (const RunTimeError& error) {
    throw Failure{exit_code::file_error,
                  words_of(path) + ": " + QString::fromLocal8Bit(error.text.c_str())};
  }
}

/// The path of the device that the user named; one that isn't there keeps its name.
std::string device_of(const Options& options) {
  if (is_network_name(options.device)) return options.device;
  const std::string device = platform::resolved_device(options.device);
  return device.empty() ? options.device : device;
}

Outcome run_command(const Options& options, LoopConsole& console) {
  const auto trace = open_trace(console, options.trace);
  PortLine line(console.loop, platform::state_folder(), device_of(options));
  Session session(console, line, make_sender, platform::state_folder(), trace.get());
  on_end_request(console.loop, [&] {
    console.loop.handle([&] {
      session.leave();
      console.end();
    });
  });
  const auto command = std::ranges::find(commands(), options.command, &Command::name);
  Outcome outcome = command->run(session, options);
  session.leave();
  if (trace && !trace->flush()) write_error("The trace is incomplete: the file took no more");
  return outcome;
}

Outcome outcome_of(const Failure& failure) {
  write_error(failure.text);
  return {
      {{"error", QJsonObject{{"code", failure.code}, {"text", failure.text}}}}, {}, failure.code};
}

/// The code of the outcome, or of a failure where it couldn't be written.
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

Outcome run_options(const Options& options) {
  LoopConsole console(options.quiet);
  try {
    return run_command(options, console);
  } catch (const Ended&) {
    console.show_progress(0, 0);
    return outcome_of(Failure{exit_code::interrupted, "interrupted"});
  }
}

}  // namespace

int run_program(const std::vector<std::string>& arguments) {
  platform::prepare_streams();
  bool json = std::ranges::find(arguments, "--json") != arguments.end();
  try {
    const Options options = parse_options(arguments);
    json = options.json;
    return print(run_options(options), json);
  } catch (const Help& help) {
    std::fputs(help.text.toUtf8().constData(), stdout);
    return std::fflush(stdout) == 0 ? exit_code::done : exit_code::file_error;
  } catch (const Failure& failure) {
    return print(outcome_of(failure), json);
  }
}

}  // namespace orvex
