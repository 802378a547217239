#include "testing/virtual/temporary_folder.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace orvex::testing {
namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::string name = (fs::temp_directory_path() / "orvex-test-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = name;
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
