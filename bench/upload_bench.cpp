// Uploads through a relayed line, ours and those of sz side by side. Prints rows of a table.
// orvex-bench-upload [-n runs] [-j uploads at once] [row ...]

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "bench/figures.h"
#include "bench/upload_rows.h"

namespace orvex::bench {
namespace {

struct Options {
  std::size_t runs = 1;
  std::size_t lanes = 8;
  std::vector<std::string_view> wanted;

  bool wants(const UploadRow& row) const {
    return wanted.empty() || std::ranges::find(wanted, row.name) != wanted.end();
  }
};

Options parse(int count, char** arguments) {
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string_view word = arguments[i];
    std::size_t* number = word == "-n" ? &options.runs : word == "-j" ? &options.lanes : nullptr;
    if (number == nullptr) {
      options.wanted.push_back(word);
    } else if (++i < count) {
      *number = std::max(1UL, std::strtoul(arguments[i], nullptr, 10));
    }
  }
  return options;
}

/// The uploads of a row by one of the two senders: medians, and how many arrived.
struct Side {
  double seconds = 0, ended = 0, processor = 0, shown = 0, received = 0;
  std::size_t whole = 0, complete = 0, uploads = 0;

  explicit Side(const std::vector<UploadResult>& results) : uploads(results.size()) {
    const auto middle = [&](double UploadResult::*figure) {
      std::vector<double> values;
      for (const auto& result : results) values.push_back(result.*figure);
      return median(values);
    };
    seconds = middle(&UploadResult::seconds);
    ended = middle(&UploadResult::ended);
    processor = middle(&UploadResult::processor);
    shown = middle(&UploadResult::shown);
    received = middle(&UploadResult::received);
    for (const auto& result : results) {
      whole += result.whole && result.complete;
      complete += result.complete;
    }
  }
  bool all_whole() const { return whole == uploads; }
};

std::string text_of(const Side& side, Judge judge) {
  std::string text(100, '\0');
  const double time = judge == Judge::end         ? side.ended
                      : judge == Judge::processor ? side.processor
                                                  : side.seconds;
  const int size = std::snprintf(text.data(), text.size(), "%.2f s", time);
  text.resize(static_cast<std::size_t>(size));
  const std::string count = std::to_string(side.whole) + " of " + std::to_string(side.uploads);
  if (judge == Judge::whole) return count + " whole, " + text;
  if (judge == Judge::end) return text + (side.complete == 0 ? ", failed" : ", complete");
  return side.all_whole() ? text : text + ", " + count + " whole";
}

/// What the row is judged by, in words, and whether it is kept.
std::pair<std::string, bool> verdict(const UploadRow& row, const Side& ours, const Side& sz) {
  std::string text(100, '\0');
  const auto words = [&](const char* format, auto... values) {
    const int size = std::snprintf(text.data(), text.size(), format, values...);
    return text.substr(0, static_cast<std::size_t>(size));
  };
  const double over_sz = ours.seconds / sz.seconds;
  const double processor = ours.processor / sz.processor;
  switch (row.judge) {
    case Judge::times_of_sz:
      return {words("%.3f of sz, at most %.3f", over_sz, row.limit),
              ours.all_whole() && over_sz <= row.limit};
    case Judge::seconds:
      return {words("at most %.1f s", row.limit),
              ours.all_whole() && ours.seconds < row.limit + 0.05};
    case Judge::whole:
      return {"all whole", ours.all_whole()};
    case Judge::end:
      return {words("fails by %.0f s; the bar at %.0f of %.0f received", row.limit, ours.shown,
                    ours.received),
              ours.complete == 0 && ours.ended <= row.limit && ours.shown <= ours.received};
    case Judge::processor:
      return {words("%.2f of sz, at most %.2f", processor, row.limit),
              ours.all_whole() && processor <= row.limit};
  }
  return {};
}

bool print(const UploadRow& row, const Side& ours, const Side& sz) {
  const auto [wanted, kept] = verdict(row, ours, sz);
  std::printf("| %s (%zu KiB) | %s | %s | %s | %s |\n", row.name, row.kibibytes,
              text_of(ours, row.judge).c_str(), text_of(sz, row.judge).c_str(), wanted.c_str(),
              kept ? "kept" : "MISSED");
  return kept;
}

void add_jobs(const UploadRow& row, std::size_t runs, std::vector<UploadJob>& jobs) {
  UploadJob job = row.job;
  job.size = row.kibibytes * 1024;
  std::vector<LineKind> lines = row.variants;
  if (lines.empty()) lines.push_back(job.there);
  for (const bool ours : {true, false}) {
    job.ours = ours;
    for (const LineKind& line : lines) {
      job.there = line;
      jobs.insert(jobs.end(), runs, job);
    }
  }
}

int run(const Options& options) {
  std::vector<const UploadRow*> rows;
  std::vector<UploadJob> jobs;
  std::vector<std::size_t> ends;
  for (const UploadRow& row : upload_rows()) {
    if (!options.wants(row)) continue;
    if (!is_there(row.job.peer)) {
      std::printf("| %s | left out: not installed | | | |\n", row.name);
      continue;
    }
    rows.push_back(&row);
    add_jobs(row, options.runs, jobs);
    ends.push_back(jobs.size());
  }
  std::fflush(stdout);
  const auto results = run_uploads(jobs, options.lanes);
  bool kept = true;
  auto from = results.begin();
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const auto to = results.begin() + static_cast<std::ptrdiff_t>(ends[row]);
    const auto middle = from + (to - from) / 2;
    kept &= print(*rows[row], Side({from, middle}), Side({middle, to}));
    from = to;
  }
  return kept ? 0 : 1;
}

}  // namespace
}  // namespace orvex::bench

int main(int count, char** arguments) {
  return orvex::bench::run(orvex::bench::parse(count, arguments));
}
