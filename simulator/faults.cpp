#include "simulator/faults.h"

#include <array>
#include <charconv>

namespace orvex::simulator {
namespace {

constexpr std::string_view some_junk{"\xF8\x15\x80\xC0\x01\xFE", 6};

struct NamedFault {
  std::string_view usage;
  void (*set)(Faults&, int value);

  std::string_view name() const { return usage.substr(0, usage.find('=')); }
};

constexpr std::array named_faults{
    NamedFault{"silent=FRAMES", [](Faults& f, int value) { f.silent = value; }},
    NamedFault{"nak=FRAMES", [](Faults& f, int value) { f.refused = value; }},
    NamedFault{"ignored=FRAMES", [](Faults& f, int value) { f.ignored = value; }},
    NamedFault{"lost-ack=FRAMES", [](Faults& f, int value) { f.lost_acks = value; }},
    NamedFault{"late-ack=MS",
               [](Faults& f, int value) {
                 f.late_acks = always;
                 f.late_by = std::chrono::milliseconds(value < 0 ? 1500 : value);
               }},
    NamedFault{"junk-before-ack", [](Faults& f, int) { f.junk_before_ack = some_junk; }},
    NamedFault{"cut-reply=BYTES",
               [](Faults& f, int value) {
                 f.cut_reply = value < 0 ? 0 : static_cast<std::size_t>(value);
               }},
    NamedFault{"no-crlf", [](Faults& f, int) { f.reply_without_end = true; }},
    NamedFault{"padded-reply=BYTES",
               [](Faults& f, int value) {
                 f.padded_reply = value < 0 ? 40000 : static_cast<std::size_t>(value);
               }},
    NamedFault{"no-eot", [](Faults& f, int) { f.frame_without_end = true; }},
    NamedFault{"junk-at-wrong-rate", [](Faults& f, int) { f.junk_at_wrong_rate = true; }},
    NamedFault{"unplug-after=FRAMES",
               [](Faults& f, int value) { f.unplug_after = value < 0 ? 1 : value; }},
};

}  // namespace

bool set_fault(Faults& faults, std::string_view name_and_value) {
  const auto equals = name_and_value.find('=');
  int value = always;
  if (name_and_value.starts_with("only=")) {
    faults.only = name_and_value.substr(equals + 1);
    return true;
  }
  if (equals != std::string_view::npos) {
    const auto digits = name_and_value.substr(equals + 1);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc{} || end != digits.data() + digits.size() || value < 0) return false;
  }
  for (const auto& fault : named_faults) {
    if (fault.name() != name_and_value.substr(0, equals)) continue;
    fault.set(faults, value);
    return true;
  }
  return false;
}

std::vector<std::string_view> fault_names() {
  std::vector<std::string_view> names{"only=TEXT"};
  names.reserve(std::size(named_faults) + 1);
  for (const auto& fault : named_faults) names.push_back(fault.usage);
  return names;
}

}  // namespace orvex::simulator
