// Thousands of transactions and hundreds of uploads on a line with random damage, on a virtual
// clock: what was accepted is what was sent, all comes to an end, and memory doesn't grow.
// orvex-bench-soak [seed]

#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "bench/figures.h"
#include "setup/scanner_setup.h"
#include "virtual/desk.h"

namespace orvex::bench {
namespace {

using namespace std::chrono_literals;
using simulator::LineDamage;
using simulator::Where;
using Random = std::mt19937;

constexpr int rounds = 200;  // of one upload each
constexpr int transactions_a_round = 50;
constexpr int rounds_a_bench = 20;  // the virtual clock ends after six hours
constexpr std::size_t largest_image = 40000;
constexpr long most_growth_kib = 1024;

struct Tally {
  int transactions = 0, damaged = 0, acknowledged = 0;
  int uploads = 0, damaged_uploads = 0, accepted = 0, complete = 0;
  std::size_t bytes_hit = 0;
  std::size_t bytes_sent = 0;
  int broken = 0;
};

void require(bool holds, const char* what, Tally& tally) {
  if (holds) return;
  ++tally.broken;
  std::printf("broken, transaction %d, upload %d: %s\n", tally.transactions, tally.uploads, what);
}

/// Flips, losses, doubled and late bytes, each of them one in 2^least to 2^(least + 8) or absent.
LineDamage random_damage(Random& random, unsigned least) {
  LineDamage damage;
  const auto odds = [&] {
    return Where::one_in(std::size_t{1} << (least + random() % 9),
                         static_cast<std::uint32_t>(random()));
  };
  if (random() % 2 == 0) damage.flip(odds(), static_cast<unsigned char>(1U << random() % 8));
  if (random() % 2 == 0) damage.drop(odds());
  if (random() % 2 == 0) damage.duplicate(odds());
  if (random() % 4 == 0) damage.delay(odds(), std::chrono::milliseconds(random() % 1500));
  return damage;
}

std::string random_tag(Random& random, const ScannerSetup& setup) {
  constexpr std::string_view tags[]{"<SETPAR:>", "<APP1RV:>",    "<APP2RV:>",
                                    "<HARDRV:>", "<FINGER:>",    "<WEBSIT:>",
                                    "<SERIAL:>", "<SPVOLU=LOW>", "<FACDEF=1>"};
  const std::size_t which = random() % (std::size(tags) + 1);
  if (which < std::size(tags)) return std::string(tags[which]);
  std::string all;
  for (const auto& tag : Setup_Tag_List(setup)) all += tag;
  return all;
}

void transact(test::Bench& bench, Random& random, Tally& tally) {
  const bool damaged = random() % 4 != 0;
  bench.line.to_scanner = damaged ? random_damage(random, 2) : LineDamage{};
  bench.line.to_tool = damaged ? random_damage(random, 2) : LineDamage{};
  if (!damaged) {
    bench.line.match_scanner();
    while (bench.line.due()) bench.windows.idle(1s);  // what is late comes in
  }
  bench.line.frames.clear();
  bench.scanner.frames.clear();
  bench.windows.boxes.clear();
  bench.windows.pumps = 0;
  const std::string tag = random_tag(random, ScannerSetup());
  const Time began = bench.now();
  const auto result = bench.exchange.Send_Tag(tag);
  ++tally.transactions;
  tally.damaged += damaged;
  tally.acknowledged += result;
  tally.bytes_hit += bench.line.to_scanner.hits() + bench.line.to_tool.hits();
  require(result == 0 || result == 1, "a result of 0 or 1", tally);
  require(bench.now() - began <= 3 * 1000ms + 1500ms, "an end in time", tally);
  require(!bench.forms.form1.Timer1.Enabled() || !bench.windows.boxes.empty(), "a timer at rest",
          tally);
  require(bench.line.frames.size() >= 1 && bench.line.frames.size() <= 3, "1 to 3 frames", tally);
  require(damaged || (result == 1 && bench.line.frames.size() == 1 &&
                      bench.scanner.frames == std::vector{tag}),
          "a good line that works at once", tally);
}

void upload(Random& random, Tally& tally) {
  test::Desk desk;
  desk.start();
  const std::size_t size = 109 + random() % largest_image;
  const std::string image = test::random_image(size, static_cast<std::uint32_t>(random()));
  const bool damaged = random() % 8 != 0;
  const LineDamage to_scanner = damaged ? random_damage(random, 8) : LineDamage{};
  const LineDamage to_tool = damaged ? random_damage(random, 6) : LineDamage{};
  bool under_way = false;
  desk.loading.taken = [&] {
    if (!under_way) {
      desk.line.to_scanner = to_scanner;
      desk.line.to_tool = to_tool;
      under_way = true;
    }
    if (desk.loading.receiver.over || desk.loading.receiver.cancelled) {
      tally.bytes_hit += desk.line.to_scanner.hits() + desk.line.to_tool.hits();
      desk.line.to_scanner = desk.line.to_tool = {};
    }
  };
  desk.windows.answers = {{Answer::cancel}};  // to a scan that finds nothing
  desk.load(image, random() % 2 == 0);
  for (int minute = 0; minute < 60 && desk.program.forms.form3.Loaded; ++minute) {
    desk.windows.idle(1min);
  }
  ++tally.uploads;
  tally.damaged_uploads += damaged;
  tally.bytes_sent += desk.line.bytes_written;
  const bool accepted = desk.loading.receiver.over;
  const bool complete = desk.windows.box_texts().find("[RESTART the scanner") != std::string::npos;
  tally.accepted += accepted;
  tally.complete += complete;
  require(under_way && !desk.program.forms.form3.Loaded, "an upload with an end", tally);
  require(!accepted || desk.loading.receiver.file == image, "an accepted file that is the one sent",
          tally);
  require(!complete || desk.loading.receiver.file == image, "a complete load that is whole", tally);
  require(complete || !accepted, "an accepted file that the tool knows of", tally);
  require(damaged || (accepted && complete), "a good line that loads", tally);
}

long resident_kib() {
  ::malloc_trim(0);  // what is free doesn't count
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::strtol(line.c_str() + 6, nullptr, 10);
  }
  return 0;
}

int run(unsigned seed) {
  std::printf("seed %u\n", seed);
  Random random(seed);
  Tally tally;
  std::unique_ptr<test::Bench> bench;
  long quarter = 0;
  const double began = processor_seconds();
  for (int round = 0; round < rounds; ++round) {
    if (round % rounds_a_bench == 0) bench = std::make_unique<test::Bench>();
    for (int i = 0; i < transactions_a_round; ++i) transact(*bench, random, tally);
    upload(random, tally);
    if (round + 1 == rounds / 4) quarter = resident_kib();
  }
  const long end = resident_kib();
  require(quarter > 0 && end - quarter <= most_growth_kib, "memory that doesn't grow", tally);
  std::printf("%d transactions, %d of them on a damaged line; %d succeeded\n", tally.transactions,
              tally.damaged, tally.acknowledged);
  std::printf(
      "%d uploads, %d of them on a damaged line, %zu bytes sent; %d accepted, %d complete\n",
      tally.uploads, tally.damaged_uploads, tally.bytes_sent, tally.accepted, tally.complete);
  std::printf("%zu bytes flipped, lost, doubled or late\n", tally.bytes_hit);
  std::printf("VmRSS at a quarter %ld KiB, at the end %ld KiB; %.1f s of processor\n", quarter, end,
              processor_seconds() - began);
  std::printf("%d invariants broken\n", tally.broken);
  return tally.broken == 0 ? 0 : 1;
}

}  // namespace
}  // namespace orvex::bench

int main(int count, char** arguments) {
  const auto seed = count > 1 ? std::strtoul(arguments[1], nullptr, 10) : 1;
  return orvex::bench::run(static_cast<unsigned>(seed));
}
