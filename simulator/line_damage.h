#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string_view>
#include <vector>

#include "simulator/time.h"

namespace orvex::simulator {

/// Positions in a stream of bytes, counted from 0.
class Where {
 public:
  static Where at(std::vector<std::size_t> positions);
  /// The n-th byte, and each n-th from there on: n - 1, 2n - 1, ...
  static Where every(std::size_t n);
  /// One byte in n on the average, the same ones for the same seed.
  static Where one_in(std::size_t n, std::uint32_t seed);

  /// Asked once for each position, in order.
  bool hits(std::size_t position);

 private:
  std::vector<std::size_t> positions_;
  std::size_t every_ = 0;
  std::size_t odds_ = 0;
  std::mt19937 random_;
};

/// What a bad line does to a stream of bytes. The same bytes come out damaged in the same way
/// however they are cut.
class LineDamage {
 public:
  struct Arrival {
    char byte;
    Time late;  ///< by which it comes later than on a good line
  };

  LineDamage& flip(Where where, unsigned char bits = 0x20);
  LineDamage& drop(Where where);
  LineDamage& duplicate(Where where);
  /// These bytes, and what is behind them, come later.
  LineDamage& delay(Where where, Time by);

  std::vector<Arrival> pass(std::string_view bytes);
  /// Bytes that were changed, lost, doubled or delayed so far.
  std::size_t hits() const { return hits_; }

 private:
  enum class Kind { flip, drop, duplicate, delay };
  struct Rule {
    Kind kind;
    Where where;
    unsigned char bits = 0;
    Time by{};
  };

  std::vector<Rule> rules_;
  std::size_t position_ = 0;
  std::size_t hits_ = 0;
};

}  // namespace orvex::simulator
