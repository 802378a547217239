#include "transfer/zmodem_offer.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <utility>

namespace orvex {
namespace {

using std::chrono::seconds;

constexpr Time limit = seconds(100);
constexpr Time again_after = seconds(45);
constexpr Time crossing = seconds(1);
constexpr int most_offers = 10;
constexpr std::size_t longest_name = 255;
constexpr std::uint32_t binary_file = 0x01000000;  // ZCBIN in F0

std::string description_of(const FileSource& file, std::uint64_t size) {
  std::array<char, 64> facts{};
  std::snprintf(facts.data(), facts.size(), "%llu %llo %o", static_cast<unsigned long long>(size),
                static_cast<unsigned long long>(std::max<std::int64_t>(file.modified(), 0)),
                file.mode());
  std::string text = file.name().substr(0, longest_name);
  std::erase(text, '\0');
  text += '\0';
  text += facts.data();
  text += '\0';
  return text;
}

}  // namespace

ZmodemOffer::ZmodemOffer(ZmodemTransfer& transfer, Time now)
    : ZmodemPhase(transfer), clock_(now, limit, again_after) {}

void ZmodemOffer::on_header(const ZmodemHeader& header, Time now) {
  switch (header.frame) {
    case ZmodemFrame::zrpos:
      return on_position(header.value, now);
    case ZmodemFrame::zrinit:
      return on_ready(header, now);
    case ZmodemFrame::znak:
      return offer_again();
    default:
      return on_other_header(header, now);
  }
}

void ZmodemOffer::on_position(std::uint32_t place, Time now) {
  if (place > transfer_.size) {
    return transfer_.fail("the scanner asked for data beyond the end of the file");
  }
  transfer_.answers = ZmodemAnswers::not_known;
  transfer_.gain(place);
  transfer_.window.restart_at(place, now);
  transfer_.step = ZmodemStep::data;
}

void ZmodemOffer::on_ready(const ZmodemHeader& zrinit, Time now) {
  if (due_ || !transfer_.meet(zrinit)) return;
  if (now < crossing_until_ && may_cross_-- > 0) return;
  offer_again();
}

void ZmodemOffer::offer_again() {
  if (transfer_.offers >= most_offers) {
    return transfer_.fail("the scanner asked for the same data again and again");
  }
  due_ = true;
}

void ZmodemOffer::on_damaged(Time now) {
  if (due_) return;
  transfer_.answers = ZmodemAnswers::guessed;
  transfer_.window.restart_at(0, now);
  transfer_.step = ZmodemStep::data;
}

bool ZmodemOffer::produce(Time) {
  if (!std::exchange(due_, false)) return false;
  ++transfer_.offers;
  transfer_.wire.add_header(ZmodemFrame::zfile, binary_file);
  transfer_.wire.add_subpacket(description_of(transfer_.file, transfer_.size), ZmodemEnd::wait);
  return true;
}

void ZmodemOffer::handed_over(Time left, bool all) {
  if (!all) return;
  clock_.sent(left);
  crossing_until_ = left + crossing;
}

Time ZmodemOffer::wake() const {
  return std::min(clock_.give_up(), clock_.again());
}

void ZmodemOffer::tick(Time now) {
  if (now >= clock_.give_up()) {
    transfer_.fail("the scanner did not start to take the file");
  } else if (now >= clock_.again()) {
    clock_.sent(now);
    due_ = true;
  }
}

}  // namespace orvex
