// Text of a scanner or a file on its way into the setup.

#include <cstdint>

#include "base/run_time_error.h"
#include "fuzz/invariants.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  orvex::ScannerSetup from_file;
  orvex::Apply_Stream(from_file, text, [] {});
  orvex::fuzz::require_sound(from_file);
  orvex::ScannerSetup from_reply;
  try {
    orvex::apply_reply(from_reply, text, [] {});
    orvex::fuzz::require(from_reply == from_file, "a reply and a file taken alike");
  } catch (const orvex::RunTimeError&) {
    // Too long, or a frame without its end: what came before stays, and has to be sound too.
  }
  orvex::fuzz::require_sound(from_reply);
  return 0;
}
