// Thousands of transactions and hundreds of uploads on a line with random damage, on a virtual
// clock: what was accepted is what was sent, all comes to an end, and memory doesn't grow.
// orvex-bench-soak [seed [seconds]]: one turn with this seed, or turns with the next ones until the
// seconds are over.

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
#include "testing/virtual/desk.h"

namespace orvex::bench {
namespace {

using namespace std::chrono_literals;
using simulator::LineDamage;
using simulator::Where;
using Random = std::mt19937;

constexpr int rounds = 200;  // of one upload each
constexpr int transactions_a_round = 50;
constexpr int rounds_a_desk = 20;  // the virtual clock ends after six hours
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

void transact(testing::LinkDesk& desk, Random& random, Tally& tally) {
  const bool damaged = random() % 4 != 0;
  desk.line.to_scanner = damaged ? random_damage(random, 2) : LineDamage{};
  desk.line.to_tool = damaged ? random_damage(random, 2) : LineDamage{};
  if (!damaged) {
    desk.line.match_scanner();
    while (desk.line.due()) desk.windows.idle(1s);  // what is late comes in
  }
  desk.line.frames.clear();
  desk.scanner.frames.clear();
  desk.windows.boxes.clear();
  desk.windows.pumps = 0;
  const std::string tag = random_tag(random, ScannerSetup());
  const Time began = desk.now();
  const auto result = desk.exchange.Send_Tag(tag);
  ++tally.transactions;
  tally.damaged += damaged;
  tally.acknowledged += result;
  tally.bytes_hit += desk.line.to_scanner.hits() + desk.line.to_tool.hits();
  require(result == 0 || result == 1, "a result of 0 or 1", tally);
  require(desk.now() - began <= 3 * 1000ms + 1500ms, "an end in time", tally);
  require(!desk.forms.form1.Timer1.Enabled() || !desk.windows.boxes.empty(), "a timer at rest",
          tally);
  require(desk.line.frames.size() >= 1 && desk.line.frames.size() <= 3, "1 to 3 frames", tally);
  require(damaged || (result == 1 && desk.line.frames.size() == 1 &&
                      desk.scanner.frames == std::vector{tag}),
          "a good line that works at once", tally);
}

void upload(Random& random, Tally& tally) {
  testing::Desk desk;
  desk.start();
  const std::size_t size = 109 + random() % largest_image;
  const std::string image = testing::random_image(size, static_cast<std::uint32_t>(random()));
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
  for (int minute = 0; minute < 60 && desk.program.forms.form3.Visible; ++minute) {
    desk.windows.idle(1min);
  }
  ++tally.uploads;
  tally.damaged_uploads += damaged;
  tally.bytes_sent += desk.line.bytes_written;
  const bool accepted = desk.loading.receiver.over;
  const bool complete = desk.windows.box_texts().find("[RESTART the scanner") != std::string::npos;
  tally.accepted += accepted;
  tally.complete += complete;
  require(under_way && !desk.program.forms.form3.Visible, "an upload with an end", tally);
  require(!accepted || desk.loading.receiver.file == image, "an accepted file that is the one sent",
          tally);
  require(!complete || desk.loading.receiver.file == image, "a complete load that is whole", tally);
  require(complete || !accepted, "an accepted file that the tool knows of", tally);
  require(complete, "a load that arrives", tally);
  require(damaged || accepted, "a good line that takes leave", tally);
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
  std::unique_ptr<testing::LinkDesk> desk;
  long quarter = 0;
  const double began = processor_seconds();
  for (int round = 0; round < rounds; ++round) {
    if (round % rounds_a_desk == 0) desk = std::make_unique<testing::LinkDesk>();
    for (int i = 0; i < transactions_a_round; ++i) transact(*desk, random, tally);
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
  const auto number = [&](int which, unsigned long otherwise) {
    return count > which ? std::strtoul(arguments[which], nullptr, 10) : otherwise;
  };
  auto seed = static_cast<unsigned>(number(1, 1));
  const double end = orvex::bench::wall_seconds() + static_cast<double>(number(2, 0));
  int failures = 0;
  do {
    failures += orvex::bench::run(seed++);
  } while (orvex::bench::wall_seconds() < end);
  return failures == 0 ? 0 : 1;
}
