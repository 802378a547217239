#include "upgrade/image_source.h"

#include "platform/platform.h"
#include "window/run_time_error.h"

namespace orvex {
namespace {

class ImageSource final : public FileSource {
 public:
  explicit ImageSource(const std::filesystem::path& path) : name_(path.filename().string()) {
    if (const auto error = file_.open(path)) throw error_of(error);
  }

  std::string name() const override { return name_; }
  std::uint64_t size() const override { return file_.size(); }
  std::int64_t modified() const override { return file_.modified(); }
  unsigned mode() const override { return file_.mode(); }
  bool read(std::uint64_t offset, std::span<char> into) override {
    std::error_code error;
    return file_.read(offset, into, error) == into.size() && !error;
  }

 private:
  std::string name_;
  platform::InputFile file_;
};

}  // namespace

std::unique_ptr<FileSource> open_image(const std::filesystem::path& path) {
  return std::make_unique<ImageSource>(path);
}

}  // namespace orvex
