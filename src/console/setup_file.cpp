#include "console/setup_file.h"

#include "base/run_time_error.h"
#include "console/failure.h"
#include "setup/apply.h"
#include "setupfiles/setup_files.h"

namespace orvex {

PartialSetup read_setup(Console& console, const std::filesystem::path& path) {
  try {
    const std::string text = read_setup_file(console, path);
    PartialSetup setup([&](ScannerSetup& values) { Apply_Stream(values, text, [] {}); });
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
