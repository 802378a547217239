#pragma once

#include <filesystem>

#include "console/console.h"
#include "console/partial_setup.h"

namespace orvex {

/// What a setup file names. Throws Failure, file error, if it can't be read or names nothing.
PartialSetup read_setup(Console& console, const std::filesystem::path& path);

/// The name of a file for people.
QString words_of(const std::filesystem::path& path);

}  // namespace orvex
