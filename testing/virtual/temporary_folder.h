#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace orvex::testing {

/// A folder of its own for one test, gone at its end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(std::string_view name) const { return path_ / name; }
  /// Writes a file, with its folders, and gives its path.
  std::filesystem::path write(std::string_view name, std::string_view bytes) const;

 private:
  std::filesystem::path path_;
};

/// The whole file; "(none)" where it can't be read.
std::string content(const std::filesystem::path& path);

}  // namespace orvex::testing
