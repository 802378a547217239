#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace orvex::simulator {

/// A pseudo-terminal behind a symbolic link. The tool opens the link as its serial port. Failures
/// are thrown as std::system_error.
class PtyDevice {
 public:
  /// Makes the pseudo-terminal and the link, in place of an older link.
  explicit PtyDevice(std::filesystem::path link);
  /// Takes the link away, unless it leads elsewhere by now.
  ~PtyDevice();
  PtyDevice(const PtyDevice&) = delete;
  PtyDevice& operator=(const PtyDevice&) = delete;

  /// Makes a new pseudo-terminal behind the same link.
  void plug();
  /// Closes the pseudo-terminal; the link leads nowhere.
  void unplug();
  bool plugged() const { return master_ >= 0; }

  /// To wait on for reading; -1 while unplugged.
  int descriptor() const { return master_; }
  const std::string& path() const { return path_; }
  /// Rate that the other side has set, in bits a second; 0 if it is none of the scanner's.
  int rate() const;
  /// All that has come.
  std::string read();
  /// What the other side has no room for is lost, as on a line.
  void write(std::string_view bytes);

 private:
  void link_to(const std::filesystem::path& target);
  void close_descriptors();

  std::filesystem::path link_;
  std::string path_;
  int master_ = -1;
  int slave_ = -1;  ///< held open, so that the tool may come and go
};

}  // namespace orvex::simulator
