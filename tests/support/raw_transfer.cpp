#include "support/raw_transfer.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace orvex::test {
namespace {

constexpr std::size_t length_digits = 8;
constexpr std::string_view cancel_sequence = "\x18\x18\x18\x18\x18";

class Sender final : public FileEngine {
 public:
  Sender(std::unique_ptr<FileSource> source, RawTransfer& transfer) : source_(std::move(source)) {
    ++transfer.started;
    const std::string digits = std::to_string(source_->size());
    pending_ = std::string(length_digits - digits.size(), '0') + digits;
  }

  void receive(std::string_view bytes, Time) override {
    if (state_ != State::running || bytes.empty()) return;
    state_ = bytes.back() == 'K' ? State::complete : State::failed;
    if (state_ == State::complete) progress_ = total();
  }
  void tick(Time) override {}
  std::size_t most_unsent() const override { return 1024; }
  bool take_discard() override { return std::exchange(discard_, false); }
  std::string transmit(std::size_t room, Time) override {
    if (state_ == State::running && pending_.empty() && sent_ < total()) fetch(room);
    std::string bytes = pending_.substr(0, room);
    pending_.erase(0, bytes.size());
    return bytes;
  }
  std::optional<Time> wake() const override { return std::nullopt; }
  void cancel(Time) override {
    state_ = State::failed;
    discard_ = true;
    pending_ = cancel_sequence;
  }
  State state() const override { return state_; }
  bool finished() const override { return state_ != State::running && pending_.empty(); }
  std::uint64_t progress() const override { return progress_; }
  std::uint64_t total() const override { return source_->size(); }
  std::string_view reason() const override { return {}; }

 private:
  void fetch(std::size_t room) {
    pending_.resize(std::min<std::size_t>(room, total() - sent_));
    if (!source_->read(sent_, pending_)) {
      cancel({});
      return;
    }
    sent_ += pending_.size();
    progress_ = std::min(sent_, total() - 1);
  }

  std::unique_ptr<FileSource> source_;
  std::string pending_;
  std::uint64_t sent_ = 0;
  std::uint64_t progress_ = 0;
  State state_ = State::running;
  bool discard_ = false;
};

class Receiver final : public simulator::Loader {
 public:
  explicit Receiver(RawTransfer& transfer) : transfer_(transfer) {}

  void hear(std::string_view bytes, Time now) override {
    for (const char byte : bytes) {
      const bool in_length = bytes_.size() < length_digits;
      if (!in_length || (byte >= '0' && byte <= '9') || byte == cancel_sequence[0]) bytes_ += byte;
    }
    const std::size_t got = bytes_.size() - std::min(bytes_.size(), length_digits);
    if (bytes_.ends_with(cancel_sequence)) {
      ++transfer_.cancelled;
      finished_ = true;
    } else if (transfer_.fails_at && got >= *transfer_.fails_at) {
      answer('X', now);
    } else if (!transfer_.stalls_at && bytes_.size() >= length_digits &&
               got >= std::stoul(bytes_.substr(0, length_digits))) {
      complete_ = true;
      answer('K', now);
    }
  }
  std::string say(Time now) override {
    if (!answer_at_ || *answer_at_ > now) return {};
    answer_at_.reset();
    return std::exchange(answer_, {});
  }
  std::optional<Time> due() const override { return answer_at_; }
  bool finished() const override { return finished_; }
  std::optional<std::string> file() const override {
    if (!complete_) return std::nullopt;
    return bytes_.substr(length_digits);
  }

 private:
  void answer(char letter, Time now) {
    if (finished_) return;
    finished_ = true;
    answer_ = letter;
    answer_at_ = transfer_.ended = now + std::chrono::milliseconds(10);
  }

  RawTransfer& transfer_;
  std::string bytes_;
  std::string answer_;
  std::optional<Time> answer_at_;
  bool finished_ = false;
  bool complete_ = false;
};

}  // namespace

std::unique_ptr<FileEngine> raw_sender(std::unique_ptr<FileSource> source, RawTransfer& transfer) {
  return std::make_unique<Sender>(std::move(source), transfer);
}

std::unique_ptr<simulator::Loader> raw_loader(RawTransfer& transfer) {
  return std::make_unique<Receiver>(transfer);
}

}  // namespace orvex::test
