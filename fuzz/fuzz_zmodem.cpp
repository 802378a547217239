// The ZMODEM sender against a hostile receiver.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <memory>
#include <string>

#include "fuzz/require.h"
#include "transfer/file_source.h"
#include "transfer/zmodem_codec.h"
#include "transfer/zmodem_sender.h"

namespace {

using namespace std::chrono_literals;
using orvex::Time;
using orvex::fuzz::require;

class Pattern final : public orvex::FileSource {
 public:
  Pattern(std::uint64_t size, std::uint64_t readable) : size_(size), readable_(readable) {}
  std::string name() const override { return "image.bin"; }
  std::uint64_t size() const override { return size_; }
  std::int64_t modified() const override { return 1; }
  unsigned mode() const override { return 0100644; }
  bool read(std::uint64_t offset, std::span<char> into) override {
    require(offset + into.size() <= size_, "no read past the end");
    std::ranges::fill(into, static_cast<char>(offset));
    return offset + into.size() <= readable_;
  }

 private:
  std::uint64_t size_;
  std::uint64_t readable_;
};

/// Bytes, or a well-formed header, as the input says.
std::string next_answer(FuzzedDataProvider& input, std::uint64_t size) {
  if (input.ConsumeBool()) return input.ConsumeRandomLengthString(64);
  constexpr std::uint32_t full_duplex = 0x01000000;
  constexpr std::uint32_t overlapped = 0x02000000;
  const auto end = static_cast<std::uint32_t>(size);
  const std::uint32_t values[]{
      0, full_duplex, full_duplex | overlapped, 0x63000000, 0xFF000000, 1024, end, end + 1};
  const auto value =
      input.ConsumeBool() ? input.PickValueInArray(values) : input.ConsumeIntegral<std::uint32_t>();
  const auto frame = static_cast<orvex::ZmodemFrame>(input.ConsumeIntegralInRange(0, 16));
  return orvex::zmodem_hex_header({frame, value});
}

class Course {
 public:
  explicit Course(FuzzedDataProvider& input)
      : input_(input),
        size_(input.ConsumeIntegralInRange<std::uint64_t>(0, 100000)),
        sender_(
            std::make_unique<Pattern>(
                size_, input.ConsumeBool() ? size_
                                           : input.ConsumeIntegralInRange<std::uint64_t>(0, size_)),
            Time{}) {}

  void run() {
    bool repeats = false;
    std::string last;
    for (int step = 0; !sender_.finished(); ++step) {
      require(now_ < 2h, "an end in time");
      send();
      if (input_.remaining_bytes() > 0) {
        last = next_answer(input_, size_);
        repeats = input_.ConsumeBool();
        now_ += std::chrono::milliseconds(input_.ConsumeIntegralInRange(0, 20000));
        hear(last);
      } else if (repeats) {
        // The receiver goes on with its last words for ever.
        now_ += 500ms;
        hear(last);
      } else {
        now_ = std::max(now_, sender_.wake().value_or(now_ + 1s));
      }
      sender_.tick(now_);
    }
    send();
    require(sender_.transmit(1024, now_).empty(), "silence at the end");
    const bool complete = sender_.state() == orvex::FileEngine::State::complete;
    require(complete == (sender_.progress() == size_) || size_ == 0, "progress and result agree");
    require(complete == sender_.reason().empty(), "a reason for each failure");
  }

 private:
  void hear(std::string_view bytes) {
    sender_.receive(bytes, now_);
    require(sender_.progress() >= progress_, "progress that never goes back");
    progress_ = sender_.progress();
  }

  void send() {
    sender_.take_discard();
    // A receiver without a window is sent all there is; the line takes what it is given.
    for (int piece = 0; piece < 2000; ++piece) {
      const auto bytes = sender_.transmit(1024, now_);
      require(bytes.size() <= 1024, "no more than there is room for");
      if (bytes.empty()) return;
    }
  }

  FuzzedDataProvider& input_;
  std::uint64_t size_;
  orvex::ZmodemSender sender_;
  Time now_{};
  std::uint64_t progress_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  Course(input).run();
  return 0;
}
