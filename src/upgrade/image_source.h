#pragma once

#include <filesystem>
#include <memory>

#include "link/file_engine.h"

namespace orvex {

/// The file at `path` as a source of a transfer. Throws RunTimeError where it can't be read.
std::unique_ptr<FileSource> open_image(const std::filesystem::path& path);

}  // namespace orvex
