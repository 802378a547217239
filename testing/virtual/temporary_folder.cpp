#include "testing/virtual/temporary_folder.h"

#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace orvex::testing {
namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::random_device chance;
  do {
    path_ = fs::temp_directory_path() / ("orvex-test-" + std::to_string(chance()));
  } while (!fs::create_directory(path_));
  fs::permissions(path_, fs::perms::owner_all);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

fs::path TemporaryFolder::write(std::string_view name, std::string_view bytes) const {
  const fs::path path = path_ / name;
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

std::string content(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return "(none)";
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

}  // namespace orvex::testing
