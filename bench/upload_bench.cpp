// Uploads to rz through a relayed line, ours and those of sz side by side. Prints rows of a table.
// orvex-bench-upload [-n runs] [-k KiB] [-j uploads at once] [-b buffered bytes] [row ...]

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "bench/figures.h"
#include "bench/upload_pair.h"

namespace orvex::bench {
namespace {

using namespace std::chrono_literals;

constexpr Time at_115200 = Time(86806);  // a byte of 10 bits

enum class Kind { clean, damaged, answers, silent, unpaced };

struct Row {
  const char* name;
  Kind kind;
  double most_time;  ///< over that of sz; clean rows only
  LineKind there, back;
  bool firmware = false;
};

const std::array rows{
    Row{"random", Kind::clean, 1.003, {.byte_time = at_115200}, {.byte_time = at_115200}},
    Row{"firmware", Kind::clean, 1.003, {.byte_time = at_115200}, {.byte_time = at_115200}, true},
    Row{"16 ms", Kind::clean, 1.005, {at_115200, 16ms}, {at_115200, 16ms}},
    Row{"flip 100 kB",
        Kind::damaged,
        0,
        {.byte_time = at_115200, .flip_every = 100000},
        {.byte_time = at_115200}},
    Row{"flip 10 kB",
        Kind::damaged,
        0,
        {.byte_time = at_115200, .flip_every = 10000},
        {.byte_time = at_115200}},
    Row{"drop 64 kB",
        Kind::damaged,
        0,
        {.byte_time = at_115200, .drop_every = 65536},
        {.byte_time = at_115200}},
    Row{"bad answers",
        Kind::answers,
        0,
        {.byte_time = at_115200},
        {.byte_time = at_115200, .flip_every = 1009}},
    Row{"silent",
        Kind::silent,
        0,
        {.byte_time = at_115200},
        {.byte_time = at_115200, .dies_after = 5s}},
    Row{"unpaced", Kind::unpaced, 0, {}, {}},
};

/// Medians of the runs of a row.
struct Pair {
  UploadResult ours, sz;
};

UploadResult median_of(const UploadResult* first, std::size_t runs) {
  const auto middle = [&](double UploadResult::*figure) {
    std::vector<double> values;
    for (std::size_t run = 0; run < runs; ++run) values.push_back(first[run].*figure);
    return median(values);
  };
  UploadResult result{true, middle(&UploadResult::seconds), middle(&UploadResult::bytes),
                      middle(&UploadResult::processor), middle(&UploadResult::silence)};
  for (std::size_t run = 0; run < runs; ++run) result.intact &= first[run].intact;
  return result;
}

/// `clean` is the row of random data on a good line, of the same run.
void print(const Row& row, const Pair& pair, const Pair& clean, double mebibytes) {
  const std::string what = std::string("upload, ") + row.name + ": ";
  const auto& [ours, sz] = pair;
  const auto less_than_a_third = [&](const char* figure, double UploadResult::*value) {
    print_row(what + "extra " + figure + ", over that of sz",
              (ours.*value - clean.ours.*value) / (sz.*value - clean.sz.*value), "times", 1. / 3);
  };
  if (row.kind != Kind::silent && !ours.intact) std::printf("| %sNOT INTACT |\n", what.c_str());
  std::printf("| upload, %s | %.0f bytes, %.3f s | sz: %.0f bytes, %.3f s | %s |\n", row.name,
              ours.bytes, ours.seconds, sz.bytes, sz.seconds,
              sz.intact || row.kind == Kind::silent ? "" : "not intact");
  switch (row.kind) {
    case Kind::clean:
      print_row(what + "time, over that of sz", ours.seconds / sz.seconds, "times", row.most_time);
      print_row(what + "bytes, over those of sz", ours.bytes / sz.bytes, "times", 1);
      break;
    case Kind::damaged:
      less_than_a_third("bytes", &UploadResult::bytes);
      less_than_a_third("time", &UploadResult::seconds);
      break;
    case Kind::silent:
      print_row(what + "time to notice (sz: " + std::to_string(std::lround(sz.silence)) + " s)",
                ours.silence, "s", 15);
      break;
    case Kind::unpaced:
      print_row(what + "processor time of the engine a MiB (sz: " +
                    std::to_string(std::lround(sz.processor / mebibytes * 1000)) + " ms)",
                ours.processor / mebibytes * 1000, "ms", 12);
      break;
    case Kind::answers:
      break;
  }
}

struct Options {
  std::size_t runs = 5;
  std::size_t kibibytes = 256;
  std::size_t lanes = 4;
  std::size_t buffer = 0;
  std::vector<std::string_view> wanted;

  bool wants(const Row& row) const {
    const bool is_measure_of_others = &row == rows.data();
    return wanted.empty() || is_measure_of_others ||
           std::ranges::find(wanted, row.name) != wanted.end();
  }
};

Options parse(int count, char** arguments) {
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string_view word = arguments[i];
    std::size_t* number = word == "-n"   ? &options.runs
                          : word == "-k" ? &options.kibibytes
                          : word == "-j" ? &options.lanes
                          : word == "-b" ? &options.buffer
                                         : nullptr;
    if (number == nullptr) {
      options.wanted.push_back(word);
    } else if (++i < count) {
      *number = std::max(1UL, std::strtoul(arguments[i], nullptr, 10));
    }
  }
  return options;
}

bool run(const Options& options) {
  std::vector<const Row*> wanted;
  std::vector<UploadJob> jobs;
  for (const Row& row : rows) {
    if (!options.wants(row)) continue;
    wanted.push_back(&row);
    UploadJob job{true, row.firmware, options.kibibytes * 1024, row.there, row.back};
    if (row.kind == Kind::unpaced) job.size *= 64;  // or it would be over too soon to measure
    job.there.buffer = options.buffer;
    jobs.insert(jobs.end(), options.runs, job);
    job.ours = false;
    jobs.insert(jobs.end(), options.runs, job);
  }
  const auto results = run_uploads(jobs, options.lanes);
  const auto pair_of = [&](std::size_t row) {
    const UploadResult* first = &results[2 * row * options.runs];
    return Pair{median_of(first, options.runs), median_of(first + options.runs, options.runs)};
  };
  bool intact = true;
  for (std::size_t row = 0; row < wanted.size(); ++row) {
    const Pair pair = pair_of(row);
    print(*wanted[row], pair, pair_of(0), static_cast<double>(options.kibibytes) * 64 / 1024);
    intact &= pair.ours.intact || wanted[row]->kind == Kind::silent;
  }
  return intact;
}

}  // namespace
}  // namespace orvex::bench

int main(int count, char** arguments) {
  return orvex::bench::run(orvex::bench::parse(count, arguments)) ? 0 : 1;
}
