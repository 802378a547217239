#include "bench/upload_rows.h"

namespace orvex::bench {
namespace {

using namespace std::chrono_literals;
using testing::ReceiverScript;
using testing::Step;

constexpr Time at_115200 = Time(86806);  // a byte of 10 bits
constexpr std::size_t adapter = 4096;
constexpr std::uint32_t buffer_of_1_kb = 0x23000400;

const LineKind good{.byte_time = at_115200};
const LineKind far{.byte_time = at_115200, .latency = 200ms};

UploadJob to_rz(LineKind there, LineKind back = good) {
  return {.there = there, .back = back, .script = {}};
}

UploadJob to_loader(ReceiverScript script, LineKind there = good, LineKind back = good) {
  return {.there = there, .back = back, .peer = Peer::loader, .script = std::move(script)};
}

LineKind flipped(std::size_t every, std::size_t buffer = 0) {
  return {.byte_time = at_115200, .flip_every = every, .buffer = buffer};
}

std::vector<LineKind> by_chance() {
  std::vector<LineKind> lines;
  for (std::uint32_t seed = 1; seed <= 16; ++seed) {
    lines.push_back({.byte_time = at_115200, .flip_one_in = 1000, .seed = seed, .buffer = adapter});
  }
  return lines;
}

std::vector<LineKind> exactly() {
  std::vector<LineKind> lines{flipped(1000, adapter), flipped(1300, adapter)};
  for (std::size_t every = 2200; every <= 2240; every += 4) {
    lines.push_back(flipped(every, adapter));
  }
  return lines;
}

ReceiverScript mute_at(Step step, std::uint64_t bytes = 0) {
  return {.turns_bad = step, .turns_bad_at = bytes};
}

std::vector<UploadRow> make_rows() {
  const LineKind drops{.byte_time = at_115200, .drop_every = 65536};
  const LineKind late{.byte_time = at_115200, .latency = 16ms};
  const LineKind far_flipped{.byte_time = at_115200, .latency = 200ms, .flip_every = 100000};
  UploadJob firmware = to_rz(good);
  firmware.firmware = true;
  UploadJob js = to_rz(good);
  js.peer = Peer::zmodem_js;
  using enum Judge;
  return {
      {"clean", times_of_sz, 1.003, 256, to_rz(good)},
      {"firmware", times_of_sz, 1.003, 256, firmware},
      {"16 ms latency each way", times_of_sz, 1.005, 256, to_rz(late, late)},
      {"a flip every 100 kB", seconds, 23.8, 256, to_rz(flipped(100000))},
      {"a flip every 10 kB", seconds, 26.7, 256, to_rz(flipped(10000))},
      {"a drop every 64 kB", seconds, 24.0, 256, to_rz(drops)},
      {"deep, a flip every 10 kB", seconds, 29.9, 256, to_rz(flipped(10000, adapter))},
      {"loader, 1 kB buffer, 20 ms of writing", seconds, 14.8, 128,
       to_loader({.zrinit = buffer_of_1_kb, .write_time = 20ms, .deaf_while_writing = true})},
      {"answers only when asked, a flip every 20 kB", seconds, 6.7, 64,
       to_loader({.complains = false}, flipped(20000))},
      {"200 ms latency each way", times_of_sz, 1.02, 256, to_rz(far, far)},
      {"200 ms, a flip every 100 kB", times_of_sz, 1, 256, to_rz(far_flipped, far)},
      {"deep, flipped by chance 1 in 1000", whole, 0, 32, to_rz(good), by_chance()},
      {"deep, flipped every 1000, 1300, 2200 to 2240", whole, 0, 32, to_rz(good), exactly()},
      {"answers damaged every 50 bytes, 1 kB buffer", times_of_sz, 1, 32,
       to_loader({.zrinit = buffer_of_1_kb}, good, flipped(50))},
      {"loader erases 15 s at each ZFILE", seconds, 22, 64,
       to_loader({.erase_time = 15s, .erases = 9})},
      {"loader erases 15 s at each ZFILE, keeps 1 kB", seconds, 22, 64,
       to_loader({.erase_time = 15s, .erases = 9, .keeps = 1024})},
      {"loader erases 35 s once", seconds, 41, 64, to_loader({.erase_time = 35s})},
      {"loader erases 35 s at each ZFILE", seconds, 41, 64,
       to_loader({.erase_time = 35s, .erases = 9})},
      {"no answer to ZCRCQ", times_of_sz, 1.02, 64, to_loader({.answers_requests = false})},
      {"no answer to the last piece", times_of_sz, 1.02, 64, to_loader({.answers_last = false})},
      {"zmodem.js", times_of_sz, 1.05, 64, js},
      {"mute from the start", end, 30.5, 64, to_loader(mute_at(Step::start))},
      {"mute before the first ACK", end, 75, 64, to_loader(mute_at(Step::data))},
      {"mute in the middle", end, 75, 64, to_loader(mute_at(Step::data, 32768))},
      {"mute after ZEOF", end, 127, 64, to_loader(mute_at(Step::end))},
      {"ZSKIP", end, 1, 64, to_loader({.skips = true})},
      {"16 MiB unpaced", processor, 0.7, 16384, to_rz({}, {})},
  };
}

}  // namespace

const std::vector<UploadRow>& upload_rows() {
  static const std::vector<UploadRow> rows = make_rows();
  return rows;
}

}  // namespace orvex::bench
