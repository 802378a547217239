#pragma once

#include <filesystem>
#include <memory>

#include "transfer/file_source.h"

namespace orvex {

/// The file at `path` as a source of a transfer. Throws RunTimeError if it can't be read.
std::unique_ptr<FileSource> open_image(const std::filesystem::path& path);

}  // namespace orvex
