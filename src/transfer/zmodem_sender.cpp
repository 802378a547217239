#include "transfer/zmodem_sender.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "transfer/zmodem_data.h"
#include "transfer/zmodem_farewell.h"
#include "transfer/zmodem_file_end.h"
#include "transfer/zmodem_greeting.h"
#include "transfer/zmodem_offer.h"

namespace orvex {
namespace {

constexpr std::size_t largest_batch = 32768;
/// Takes 89 ms at 115200 Bps.
constexpr std::size_t most_unsent_on_paced_line = 1024;

std::unique_ptr<ZmodemPhase> make_phase(ZmodemStep step, ZmodemTransfer& transfer, Time now) {
  switch (step) {
    case ZmodemStep::greeting:
      return std::make_unique<ZmodemGreeting>(transfer, now);
    case ZmodemStep::offer:
      return std::make_unique<ZmodemOffer>(transfer, now);
    case ZmodemStep::data:
      return std::make_unique<ZmodemData>(transfer, now);
    case ZmodemStep::file_end:
      return std::make_unique<ZmodemFileEnd>(transfer, now);
    case ZmodemStep::farewell:
      return std::make_unique<ZmodemFarewell>(transfer, now);
    case ZmodemStep::over:
      break;
  }
  return nullptr;
}

}  // namespace

ZmodemSender::ZmodemSender(std::unique_ptr<FileSource> file, Time now,
                           std::uint32_t bits_per_second)
    : file_(std::move(file)),
      transfer_(*file_, bits_per_second),
      phase_(make_phase(entered_, transfer_, now)) {
  if (transfer_.size <= std::numeric_limits<std::uint32_t>::max()) return;
  transfer_.end_quietly("the file is larger than ZMODEM can send");
  enter_step(now);
}

std::uint64_t ZmodemSender::progress() const {
  const std::uint64_t size = transfer_.size;
  if (state() == State::complete) return size;
  return std::min(transfer_.gained, size - std::min<std::uint64_t>(size, 1));
}

std::size_t ZmodemSender::most_unsent() const {
  return transfer_.window.outruns_rate() ? largest_batch : most_unsent_on_paced_line;
}

void ZmodemSender::receive(std::string_view bytes, Time now) {
  for (const char byte : bytes) {
    if (over()) return;
    switch (parser_.feed(byte)) {
      case ZmodemParser::Event::header:
        phase_->on_header(parser_.header(), now);
        break;
      case ZmodemParser::Event::damaged:
        phase_->on_damaged(now);
        break;
      case ZmodemParser::Event::cancelled:
        phase_->on_cancelled(now);
        break;
      case ZmodemParser::Event::none:
        continue;
    }
    enter_step(now);
  }
}

std::optional<Time> ZmodemSender::wake() const {
  if (over()) return std::nullopt;
  return transfer_.favours.computing() ? Time{} : phase_->wake();
}

void ZmodemSender::tick(Time now) {
  if (over()) return;
  if (!transfer_.favours.computing()) {
    phase_->tick(now);
  } else if (!transfer_.favours.compute(*file_)) {
    transfer_.fail("the file could not be read");
  }
  enter_step(now);
}

std::string ZmodemSender::transmit(std::size_t room, Time now) {
  room = std::min(room, largest_batch);
  while (transfer_.wire.size() < room && produce(now)) {
  }
  if (room == 0 || transfer_.wire.empty()) return {};
  std::string out = transfer_.wire.take(room);
  transfer_.window.handed_over(out.size(), now);
  if (phase_) phase_->handed_over(transfer_.window.left(now), transfer_.wire.empty());
  return out;
}

bool ZmodemSender::produce(Time now) {
  if (over() || transfer_.favours.computing()) return false;
  const bool produced = transfer_.favours.produce(transfer_.wire) || phase_->produce(now);
  enter_step(now);
  return produced;
}

void ZmodemSender::enter_step(Time now) {
  if (transfer_.step == entered_) return;
  entered_ = transfer_.step;
  phase_ = make_phase(entered_, transfer_, now);
}

void ZmodemSender::cancel(Time now) {
  if (state() == State::running) {
    transfer_.fail("stopped by the user");
  } else {
    transfer_.step = ZmodemStep::over;
  }
  enter_step(now);
}

}  // namespace orvex
