#include "bench/figures.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace orvex::bench {
namespace {

int missed = 0;

}  // namespace

double median(std::vector<double> values) {
  std::ranges::sort(values);
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void print_row(const std::string& figure, double value, const char* unit, double limit) {
  std::printf("| %s | %.4g %s | %.4g %s | %s |\n", figure.c_str(), value, unit, limit, unit,
              value <= limit ? "kept" : "MISSED");
  std::fflush(stdout);
  missed += value <= limit ? 0 : 1;
}

int missed_rows() {
  return missed;
}

double wall_seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double processor_seconds() {
  timespec time{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

}  // namespace orvex::bench
