#include "simulator/options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <random>
#include <stdexcept>

namespace orvex::simulator {
namespace {

constexpr std::array rates{1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};

int number(std::string_view text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || value < 0) {
    throw std::invalid_argument("not a number: " + std::string(text));
  }
  return value;
}

int rate_of(std::string_view text) {
  const int rate = number(text);
  if (std::ranges::find(rates, rate) == rates.end()) {
    throw std::invalid_argument("not a rate of the scanner: " + std::string(text));
  }
  return rate;
}

int random_rate() {
  std::random_device source;
  return rates[std::uniform_int_distribution<std::size_t>(0, rates.size() - 1)(source)];
}

struct Option {
  std::string_view usage;  ///< "--name VALUE" or "--name"
  std::string_view help;
  void (*take)(ProgramOptions&, std::string_view value);

  std::string_view name() const { return usage.substr(0, usage.find(' ')); }
  bool has_value() const { return usage.find(' ') != std::string_view::npos; }
};

using P = ProgramOptions&;
using V = std::string_view;

constexpr std::array program_options{
    Option{"--rate N|random", "rate of the scanner, 9600 unless told",
           [](P o, V v) { o.rate = v == "random" ? random_rate() : rate_of(v); }},
    Option{"--revision TEXT", "revision of Application 1",
           [](P o, V v) { o.scanner.identity.application1 = v; }},
    Option{"--model TEXT", "model", [](P o, V v) { o.scanner.identity.model = v; }},
    Option{"--serial TEXT", "serial number", [](P o, V v) { o.scanner.identity.serial = v; }},
    Option{"--web TEXT", "web address", [](P o, V v) { o.scanner.identity.web = v; }},
    Option{"--answer-delay MS", "time before an ACK, and before a reply; 5 unless told",
           [](P o, V v) {
             o.scanner.ack_delay = o.scanner.reply_delay = std::chrono::milliseconds(number(v));
           }},
    Option{"--start-rate N", "rate after a restart with new firmware, 9600 unless told",
           [](P o, V v) { o.scanner.start_up_rate = rate_of(v); }},
    Option{"--paced", "bytes take their time on the line, both ways",
           [](P o, V) { o.paced = true; }},
    Option{"--fault NAME[=VALUE]", "a fault from the start on; may stand more than once",
           [](P o, V v) {
             if (!set_fault(o.faults, v))
               throw std::invalid_argument("no such fault: " + std::string(v));
           }},
    Option{"--save-image FILE", "where a loaded firmware file is kept",
           [](P o, V v) { o.save_image = v; }},
    Option{"--receiver PROGRAM", "ZMODEM receiver of the loader, rz unless told",
           [](P o, V v) { o.receiver = v; }},
    Option{"--restart manual", "a loaded file waits for the command restart",
           [](P o, V v) {
             if (v != "manual") throw std::invalid_argument("--restart knows only manual");
             o.manual_restart = true;
           }},
    Option{"--help", "this text", [](P o, V) { o.help = true; }},
};

}  // namespace

ProgramOptions parse_options(const std::vector<std::string_view>& arguments) {
  ProgramOptions options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string argument(arguments[i]);
    if (!argument.starts_with("--")) {
      if (!options.link.empty()) throw std::invalid_argument("more than one link");
      options.link = argument;
      continue;
    }
    const auto option = std::ranges::find(program_options, argument, &Option::name);
    if (option == program_options.end()) throw std::invalid_argument("no such option: " + argument);
    if (option->has_value() && ++i == arguments.size()) {
      throw std::invalid_argument(argument + " needs a value");
    }
    option->take(options, option->has_value() ? arguments[i] : std::string_view{});
  }
  if (options.link.empty() && !options.help) throw std::invalid_argument("no link named");
  return options;
}

std::string usage() {
  std::string text =
      "orvex-simulator [options] LINK\n"
      "Offers a simulated scanner on a pseudo-terminal, to which LINK then leads.\n\n";
  const auto line = [&](std::string_view left, std::string_view right) {
    constexpr std::size_t column = 26;
    text += "  " + std::string(left);
    text.append(column - std::min(column, left.size()), ' ');
    text += std::string(right) + "\n";
  };
  for (const auto& option : program_options) line(option.usage, option.help);
  text += "\nFaults:\n";
  for (const auto name : fault_names()) line(name, "");
  text += "\nCommands on standard input:\n";
  line("silent N|on|off", "leave the next N frames, all or none without an answer");
  line("nak N", "refuse the next N frames");
  line("fault NAME[=VALUE]", "any fault of the list above; fault none ends them all");
  line("rate N", "move the scanner to another rate");
  line("set TAG", "change parameters, as set <SPVOLU=LOW>");
  line("unplug, plug", "take the line away and bring it back");
  line("restart", "the power cycle after a load");
  line("quit", "");
  return text;
}

}  // namespace orvex::simulator
