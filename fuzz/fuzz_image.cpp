// The head of a firmware image, and its version beside what the scanner reports.

#include <fuzzer/FuzzedDataProvider.h>

#include "base/run_time_error.h"
#include "fuzz/require.h"
#include "testing/virtual/desk.h"
#include "upgrade/guards.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using orvex::fuzz::require;
  FuzzedDataProvider input(data, size);
  orvex::testing::LinkDesk desk;
  desk.scanner.faults.other_reply = input.ConsumeRandomLengthString(40) + "\r\n";
  desk.windows.answers = {{input.ConsumeBool() ? orvex::Answer::yes : orvex::Answer::no}};
  const bool accepts = desk.windows.answers.front().answer == orvex::Answer::yes;
  const std::string bytes = input.ConsumeRemainingBytesAsString();

  const auto header = orvex::Read_Image_Header(desk.folder.write("image.bin", bytes));
  require(header.has_value() == (bytes.size() > 108), "an image longer than its head");
  if (!header) return 0;
  require(header->CodeSize == bytes.substr(48, 8) && header->CodeCrc == bytes.substr(64, 4) &&
              header->CodeVersion == bytes.substr(80, 7) &&
              header->CodeDate == bytes.substr(96, 11),
          "fields as they stand in the file");
  desk.forms.form3.Text3 = " " + header->CodeVersion;
  try {
    const auto go_on = orvex::Check_Rev(desk.link);
    if (desk.windows.boxes.empty()) return 0;
    require((go_on == 1) == accepts || desk.windows.boxes.back().box.title != "WARNING",
            "the user's answer");
  } catch (const orvex::RunTimeError& error) {
    require(error.number == orvex::error_number::type_mismatch, "no other failure");
  }
  return 0;
}
