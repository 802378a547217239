#include "console/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "console/commands.h"
#include "console/failure.h"
#include "link/line_settings.h"

namespace orvex {
namespace {

constexpr int longest_wait = 86400;

CLI::Validator one_of_settings() {
  return {[](std::string& text) {
            return parse_settings(text) ? std::string{} : "not of the form 9600,N,8,1: " + text;
          },
          ""};
}

/// A name that a script's variable left empty stands for nothing else.
CLI::Validator not_empty() {
  return {[](std::string& text) { return text.empty() ? "the name is empty" : std::string{}; }, ""};
}

/// The words of the command line are UTF-8, whatever else the system takes names for.
CLI::Option* add_path(CLI::App& app, const std::string& name, std::filesystem::path& path,
                      const std::string& help) {
  return app.add_option_function<std::string>(
      name, [&path](const std::string& text) { path = std::u8string(text.begin(), text.end()); },
      help);
}

void add_common(CLI::App& app, Options& options) {
  auto* port = app.add_option("--port", options.port, "number of the port, 1 to 6")
                   ->check(CLI::Range(1, 6))
                   ->type_name("N");
  auto* device = app.add_option("--device", options.device, "device in place of a port's number")
                     ->check(not_empty())
                     ->type_name("PATH");
  port->excludes(device);
  auto* settings =
      app.add_option("--settings", options.settings, "the port's settings; no search then")
          ->check(one_of_settings())
          ->type_name("9600,N,8,1");
  app.add_option("--parity", options.parity, "parity of the search: N, O or E; N unless told")
      ->transform(CLI::IsMember({"N", "O", "E"}, CLI::ignore_case))
      ->type_name("P")
      ->excludes(settings);
  app.add_flag("--json", options.json, "one JSON document in place of words");
  app.add_flag("--quiet", options.quiet, "no words on the way");
  add_path(app, "--trace", options.trace, "writes every byte of the line into FILE")
      ->check(not_empty())
      ->type_name("FILE");
}

void add_arguments(CLI::App& app, const Command& command, Options& options) {
  switch (command.arguments) {
    case Arguments::none:
      break;
    case Arguments::names:
      app.add_option("NAME", options.words, "parameters; all unless told");
      break;
    case Arguments::assignments:
      app.add_option("NAME=VALUE", options.words, "what to change")->required();
      break;
    case Arguments::file:
      add_path(app, "FILE", options.file, "setup file")->required()->check(not_empty());
      break;
    case Arguments::image:
      add_path(app, "IMAGE", options.file, "firmware image")->required()->check(not_empty());
      break;
  }
}

void add_own(CLI::App& app, const std::string& command, Options& options) {
  if (command == "set" || command == "send") {
    app.add_flag("--dry-run", options.dry_run, "only says what would change");
  } else if (command == "factory") {
    app.add_flag("--yes", options.yes, "asks no question");
  } else if (command == "load") {
    app.add_flag("--fast", options.fast, "loads at 115200 Bps");
    app.add_flag("--allow-older", options.allow_older, "also an image older than the firmware");
    app.add_option("--restart-wait", options.restart_wait,
                   "seconds in which the scanner has to be back; 120 unless told")
        ->check(CLI::Range(1, longest_wait))
        ->type_name("SECONDS");
  }
}

void add_commands(CLI::App& app, Options& options) {
  app.require_subcommand(0, 1);
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  for (const Command& command : commands()) {
    const std::string name(command.name);
    auto* sub =
        app.add_subcommand(name, std::string(command.help))->fallthrough()->group("Commands");
    add_arguments(*sub, command, options);
    add_own(*sub, name, options);
    sub->callback([&options, name] { options.command = name; });
  }
}

QString text_of(const std::string& text) {
  return QString::fromStdString(text);
}

Failure no_command() {
  std::string names;
  for (const Command& command : commands()) names += " " + std::string(command.name);
  return {exit_code::wrong_use, text_of("There is no command. The commands are" + names)};
}

}  // namespace

Options parse_options(const std::vector<std::string>& arguments) {
  Options options;
  CLI::App app("Does the jobs of Orvex, the tool for a scanner on a serial line, as commands.",
               "orvexctl");
  // A path may begin with a slash on any system.
  app.allow_windows_style_options(false);
  app.set_version_flag("--version", "orvexctl " ORVEX_VERSION);
  add_common(app, options);
  add_commands(app, options);
  try {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    app.parse(reversed);
  } catch (const CLI::CallForHelp&) {
    const auto chosen = app.get_subcommands();
    throw Help{text_of(chosen.empty() ? app.help() : chosen.front()->help("orvexctl"))};
  } catch (const CLI::CallForVersion& version) {
    throw Help{text_of(std::string(version.what()) + "\n")};
  } catch (const CLI::ParseError& error) {
    throw Failure{exit_code::wrong_use, text_of(error.what())};
  }
  if (options.command.empty()) throw no_command();
  return options;
}

}  // namespace orvex
