#include "simulator/line_damage.h"

#include <algorithm>
#include <utility>

namespace orvex::simulator {

Where Where::at(std::vector<std::size_t> positions) {
  Where where;
  where.positions_ = std::move(positions);
  return where;
}

Where Where::every(std::size_t n) {
  Where where;
  where.every_ = n;
  return where;
}

Where Where::one_in(std::size_t n, std::uint32_t seed) {
  Where where;
  where.odds_ = n;
  where.random_.seed(seed);
  return where;
}

bool Where::hits(std::size_t position) {
  if (every_ != 0) return position % every_ == every_ - 1;
  if (odds_ != 0) return random_() % odds_ == 0;
  return std::ranges::find(positions_, position) != positions_.end();
}

LineDamage& LineDamage::flip(Where where, unsigned char bits) {
  rules_.push_back({Kind::flip, std::move(where), bits});
  return *this;
}

LineDamage& LineDamage::drop(Where where) {
  rules_.push_back({Kind::drop, std::move(where)});
  return *this;
}

LineDamage& LineDamage::duplicate(Where where) {
  rules_.push_back({Kind::duplicate, std::move(where)});
  return *this;
}

LineDamage& LineDamage::delay(Where where, Time by) {
  rules_.push_back({Kind::delay, std::move(where), 0, by});
  return *this;
}

std::vector<LineDamage::Arrival> LineDamage::pass(std::string_view bytes) {
  std::vector<Arrival> arrivals;
  for (char byte : bytes) {
    std::size_t copies = 1;
    Time late{};
    bool hit = false;
    for (auto& rule : rules_) {
      if (!rule.where.hits(position_)) continue;
      hit = true;
      switch (rule.kind) {
        case Kind::flip:
          byte = static_cast<char>(byte ^ static_cast<char>(rule.bits));
          break;
        case Kind::drop:
          copies = 0;
          break;
        case Kind::duplicate:
          copies *= 2;
          break;
        case Kind::delay:
          late += rule.by;
          break;
      }
    }
    if (hit) ++hits_;
    ++position_;
    arrivals.insert(arrivals.end(), copies, {byte, late});
  }
  return arrivals;
}

}  // namespace orvex::simulator
