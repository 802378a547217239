#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/loader.h"

namespace orvex::simulator {

/// A loader that hands the line to a ZMODEM receiver, `rz` or one with its options, in a folder of
/// its own. The folder and the process go with it.
class RzLoader final : public Loader {
 public:
  /// `watched` holds the descriptor to wait on for reading for as long as the receiver runs, and
  /// -1 afterwards; it must outlive the loader. Throws std::system_error where `program` can't run.
  RzLoader(const std::string& program, int& watched, Time now);
  ~RzLoader() override;
  RzLoader(const RzLoader&) = delete;
  RzLoader& operator=(const RzLoader&) = delete;

  void hear(std::string_view bytes, Time now) override;
  std::string say(Time now) override;
  std::optional<Time> due() const override { return look_again_; }
  bool finished() const override { return finished_; }
  std::optional<std::string> file() const override { return file_; }

 private:
  void start(const std::string& program);
  void feed(Time now);
  void look_for_end(Time now);
  void take_file();

  int& watched_;
  std::filesystem::path folder_;
  pid_t child_ = -1;
  int to_child_ = -1;
  int from_child_ = -1;
  std::string unfed_;
  std::optional<Time> look_again_;
  bool finished_ = false;
  std::optional<std::string> file_;
};

}  // namespace orvex::simulator
