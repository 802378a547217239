#include "upgrade/image_header.h"

#include "base/run_time_error.h"
#include "platform/files.h"

namespace orvex {

std::optional<ImageHeader> Read_Image_Header(const std::filesystem::path& path) {
  constexpr std::size_t head_size = 108;
  platform::InputFile file;
  if (const auto error = file.open(path)) throw error_of(error);
  if (file.size() <= head_size) return std::nullopt;
  std::string head(head_size, '\0');
  std::error_code error;
  const auto got = file.read(0, head, error);
  if (error) throw error_of(error);
  if (got < head_size) return std::nullopt;
  return ImageHeader{head.substr(48, 8), head.substr(64, 4), head.substr(80, 7),
                     head.substr(96, 11)};
}

}  // namespace orvex
