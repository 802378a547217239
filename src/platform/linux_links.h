#pragma once

#include <filesystem>
#include <system_error>

namespace orvex::platform {

/// The path behind all links, also if the last of them leads to a file that doesn't exist yet. In a
/// folder that all may write only links of the user or of the folder's owner are followed; another
/// is an error, and so are more than 40.
std::filesystem::path behind_links(std::filesystem::path path, std::error_code& error);

}  // namespace orvex::platform
