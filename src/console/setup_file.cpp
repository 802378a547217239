#include "console/setup_file.h"

#include "base/run_time_error.h"
#include "console/failure.h"
#include "console/parameter_words.h"
#include "link/frame.h"
#include "setup/apply.h"
#include "setupfiles/setup_files.h"

namespace orvex {
namespace {

/// A slip in a file must not pass for nothing that differs.
void require_listed_values(const PartialSetup& setup, std::string_view text,
                           const std::filesystem::path& path) {
  for (const auto& row : parameters()) {
    if (row.is_text() || setup.knows(row.field)) continue;
    const std::string named = SOH + ("<" + std::string(row.name)) + "=";
    if (text.find(named) == std::string_view::npos) continue;
    throw Failure{exit_code::file_error, words_of(path) + ": " + name_of(row.field) +
                                             " has no such value. There are " +
                                             list_of_values(row)};
  }
}

}  // namespace

PartialSetup read_setup(Console& console, const std::filesystem::path& path) {
  try {
    const std::string text = read_setup_file(console, path);
    PartialSetup setup([&](ScannerSetup& values) { Apply_Stream(values, text, [] {}); });
    require_listed_values(setup, text, path);
    if (!setup.knows_nothing()) return setup;
  } catch (const RunTimeError& error) {
    throw Failure{exit_code::file_error,
                  words_of(path) + ": " + QString::fromLocal8Bit(error.text.c_str())};
  }
  throw Failure{exit_code::file_error, words_of(path) + " is no setup file"};
}

QString words_of(const std::filesystem::path& path) {
  const auto name = path.u8string();
  return QString::fromUtf8(reinterpret_cast<const char*>(name.data()),
                           static_cast<qsizetype>(name.size()));
}

}  // namespace orvex
