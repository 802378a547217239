#include "transfer/image_source.h"

#include <algorithm>

#include "base/run_time_error.h"
#include "platform/files.h"

namespace orvex {
namespace {

std::string utf8_of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

constexpr std::size_t read_ahead = 65536;

class ImageSource final : public FileSource {
 public:
  explicit ImageSource(const std::filesystem::path& path) : name_(utf8_of(path.filename())) {
    if (const auto error = file_.open(path)) throw error_of(error);
  }

  std::string name() const override { return name_; }
  std::uint64_t size() const override { return file_.size(); }
  std::int64_t modified() const override { return file_.modified(); }
  unsigned mode() const override { return file_.mode(); }
  bool read(std::uint64_t offset, std::span<char> into) override {
    if (offset < ahead_from_ || offset + into.size() > ahead_from_ + ahead_.size()) {
      if (!fetch(offset, std::max(into.size(), read_ahead))) return false;
    }
    const auto piece = std::string_view(ahead_).substr(offset - ahead_from_, into.size());
    std::ranges::copy(piece, into.begin());
    return piece.size() == into.size();
  }

 private:
  bool fetch(std::uint64_t offset, std::size_t most) {
    std::error_code error;
    ahead_.resize(most);
    ahead_from_ = offset;
    ahead_.resize(file_.read(offset, ahead_, error));
    return !error;
  }

  std::string name_;
  platform::InputFile file_;
  std::string ahead_;
  std::uint64_t ahead_from_ = 0;
};

}  // namespace

std::unique_ptr<FileSource> open_image(const std::filesystem::path& path) {
  return std::make_unique<ImageSource>(path);
}

}  // namespace orvex
