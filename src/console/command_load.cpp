#include <cmath>

#include "base/run_time_error.h"
#include "console/commands.h"
#include "console/load.h"
#include "console/parameter_words.h"
#include "console/setup_file.h"
#include "upgrade/guards.h"
#include "upgrade/image_header.h"

namespace orvex {
namespace {

struct Image {
  double revision;  ///< its number
  qint64 bytes;
};

/// Throws Failure, file error, if the file is no image.
Image image_at(const std::filesystem::path& path) {
  try {
    if (const auto header = Read_Image_Header(path)) {
      std::error_code error;
      const auto bytes = std::filesystem::file_size(path, error);
      if (error) throw error_of(error);
      return {number_of_digits(header->CodeVersion), static_cast<qint64>(bytes)};
    }
  } catch (const RunTimeError& error) {
    if (error.number != error_number::type_mismatch) {
      throw Failure{exit_code::file_error,
                    words_of(path) + ": " + QString::fromLocal8Bit(error.text.c_str())};
    }
  }
  throw Failure{exit_code::file_error, words_of(path) + " is no firmware image"};
}

double rounded_to_ms(double seconds) {
  return std::round(seconds * 1000) / 1000;
}

}  // namespace

Outcome run_load(Session& session, const Options& options) {
  const Image image = image_at(options.file);
  session.connect(options);
  Load load(session);
  load.send(options);
  const auto before = session.reply("<APP1RV:>");
  const double seconds = rounded_to_ms(load.transfer_seconds());
  load.await_restart(options.restart_wait, image.revision);
  const auto after = session.reply("<APP1RV:>");
  return {{{"bytes", image.bytes},
           {"seconds", seconds},
           {"before", json_value(before)},
           {"after", json_value(after)}},
          {QString::number(image.bytes) + " bytes in " + QString::number(seconds) +
           " s, revision " + shown_value(before) + " -> " + shown_value(after)}};
}

}  // namespace orvex
