#include "platform/linux_links.h"

#include <sys/stat.h>
#include <unistd.h>

namespace orvex::platform {
namespace fs = std::filesystem;
namespace {

/// What the kernel asks before it follows a link in a folder such as /tmp: that it is the user's
/// own or of the folder's owner.
bool may_follow(const fs::path& link) {
  constexpr mode_t for_all = S_ISVTX | S_IWOTH;
  const fs::path folder = link.has_parent_path() ? link.parent_path() : fs::path(".");
  struct stat around {};
  struct stat status {};
  if (::stat(folder.c_str(), &around) != 0 || ::lstat(link.c_str(), &status) != 0) return false;
  return (around.st_mode & for_all) != for_all || status.st_uid == ::geteuid() ||
         status.st_uid == around.st_uid;
}

}  // namespace

fs::path behind_links(fs::path path, std::error_code& error) {
  constexpr int most_links = 40;
  for (int links = 0; links < most_links; ++links) {
    std::error_code no_link;
    const fs::path target = fs::read_symlink(path, no_link);
    if (no_link) return path;
    if (!may_follow(path)) {
      error = std::make_error_code(std::errc::permission_denied);
      return path;
    }
    path = target.is_absolute() ? target : path.parent_path() / target;
  }
  error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
  return path;
}

}  // namespace orvex::platform
