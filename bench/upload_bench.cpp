// Uploads through a paced line to rz, ours and those of sz side by side.
// upload_bench [-n runs] [-k KiB] [-j uploads at once] [-b buffered bytes] [row ...]

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bench/zmodem_relay.h"
#include "upgrade/real_peer.h"
#include "upgrade/zmodem_sender.h"

namespace orvex::bench {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using test::steady_now;

constexpr Time at_115200 = Time(86806);  // a byte of 10 bits

struct Row {
  const char* name;
  LineKind there, back;
  bool firmware = false;
};

const std::array rows{
    Row{"random", {.byte_time = at_115200}, {.byte_time = at_115200}},
    Row{"firmware", {.byte_time = at_115200}, {.byte_time = at_115200}, true},
    Row{"16 ms", {at_115200, 16ms}, {at_115200, 16ms}},
    Row{"flip 100 kB", {.byte_time = at_115200, .flip_every = 100000}, {.byte_time = at_115200}},
    Row{"flip 10 kB", {.byte_time = at_115200, .flip_every = 10000}, {.byte_time = at_115200}},
    Row{"drop 64 kB", {.byte_time = at_115200, .drop_every = 65536}, {.byte_time = at_115200}},
    Row{"bad answers", {.byte_time = at_115200}, {.byte_time = at_115200, .flip_every = 1009}},
    Row{"unpaced", {}, {}},
};

struct Result {
  bool intact = false;
  double seconds = 0;  // from the sender's start to its last byte on the line
  double bytes = 0;    // sender to receiver
  double cpu_ms = 0;   // of the sender
};

struct Job {
  const Row* row;
  std::size_t buffer;
  bool ours;
};

// Code and tables look like this: short runs of like words, text, erased flash.
std::string firmware_like(std::size_t size) {
  std::mt19937 random(7);
  std::string bytes;
  while (bytes.size() < size) {
    const std::size_t run = 16 + random() % 500;
    const auto kind = random() % 4;
    for (std::size_t i = 0; i < run; ++i) {
      const auto low = static_cast<char>(random() & (kind == 1 ? 0x1F : 0x7F));
      bytes += kind == 0 ? '\xFF' : kind == 3 ? '\0' : low;
    }
  }
  return bytes.substr(0, size);
}

[[noreturn]] void send_ours(const std::string& file, int fd) {
  class FileOnDisk final : public FileSource {
   public:
    explicit FileOnDisk(const std::string& path)
        : fd_(open(path.c_str(), O_RDONLY)), size_(fs::file_size(path)) {}
    std::string name() const override { return "upload.bin"; }
    std::uint64_t size() const override { return size_; }
    std::int64_t modified() const override { return 1700000000; }
    unsigned mode() const override { return 0100644; }
    bool read(std::uint64_t offset, std::span<char> into) override {
      return pread(fd_, into.data(), into.size(), static_cast<off_t>(offset)) ==
             static_cast<ssize_t>(into.size());
    }

   private:
    const int fd_;
    const std::uint64_t size_;
  };
  ZmodemSender sender(std::make_unique<FileOnDisk>(file), steady_now());
  test::drive(sender, fd, steady_now() + 1h);
  _exit(sender.state() == FileEngine::State::complete ? 0 : 1);
}

std::string random_bytes(std::size_t size) {
  std::mt19937 random(1);
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random() & 0xFF);
  return bytes;
}

std::string content(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

Result run_pair(const Job& job, std::size_t size) {
  std::string pattern = (fs::temp_directory_path() / "benchXXXXXX").string();
  const fs::path folder = mkdtemp(pattern.data());
  const fs::path file = folder / "upload.bin";
  const std::string data = job.row->firmware ? firmware_like(size) : random_bytes(size);
  std::ofstream(file, std::ios::binary) << data;
  fs::create_directory(folder / "got");

  test::Pty port, device;
  const pid_t rz =
      test::start_on(device.slave(), folder / "got", {"rz", "--binary", "--overwrite", "-q"});
  const Time began = steady_now();
  pid_t sender = 0;
  if (!job.ours) {
    sender = test::start_on(port.slave(), folder, {"sz", "--binary", "-q", "upload.bin"});
  } else if ((sender = fork()) == 0) {
    close(port.master());
    send_ours(file, port.slave());
  }
  port.close_slave();
  device.close_slave();
  LineKind forth = job.row->there;
  forth.buffer = job.buffer;
  RelayedLine there(port.master(), device.master(), forth);
  RelayedLine back(device.master(), port.master(), job.row->back);
  relay(there, back, began + 30min);

  kill(sender, SIGTERM);  // both have ended, or never will
  kill(rz, SIGTERM);
  int status = 0;
  rusage usage{};
  wait4(sender, &status, 0, &usage);
  waitpid(rz, nullptr, 0);
  const auto milliseconds = [](timeval time) {
    return 1e3 * static_cast<double>(time.tv_sec) + 1e-3 * static_cast<double>(time.tv_usec);
  };
  const Result result{.intact = status == 0 && content(folder / "got" / "upload.bin") == data,
                      .seconds = std::chrono::duration<double>(there.last_byte() - began).count(),
                      .bytes = static_cast<double>(there.bytes()),
                      .cpu_ms = milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime)};
  fs::remove_all(folder);
  return result;
}

struct Report {
  std::size_t job = 0;
  Result result;
};

// Runs the jobs in `lanes` processes side by side.
std::vector<Result> run_all(const std::vector<Job>& jobs, std::size_t size, std::size_t lanes) {
  std::array<int, 2> reports{};
  if (pipe(reports.data()) != 0) std::exit(1);
  for (std::size_t lane = 0; lane < lanes; ++lane) {
    if (fork() != 0) continue;
    for (std::size_t job = lane; job < jobs.size(); job += lanes) {
      const Report report{job, run_pair(jobs[job], size)};
      if (write(reports[1], &report, sizeof report) != sizeof report) _exit(1);
    }
    _exit(0);
  }
  close(reports[1]);
  std::vector<Result> results(jobs.size());
  for (Report report; read(reports[0], &report, sizeof report) == sizeof report;) {
    results[report.job] = report.result;
  }
  while (wait(nullptr) > 0) {
  }
  return results;
}

Result median(std::vector<Result> runs) {
  const auto middle = [&runs](double Result::*figure) {
    std::sort(runs.begin(), runs.end(),
              [figure](const Result& a, const Result& b) { return a.*figure < b.*figure; });
    return runs[runs.size() / 2].*figure;
  };
  const bool intact =
      std::all_of(runs.begin(), runs.end(), [](const Result& run) { return run.intact; });
  return {intact, middle(&Result::seconds), middle(&Result::bytes), middle(&Result::cpu_ms)};
}

void print(const char* row, const char* sender, const Result& result) {
  std::printf("%-12s %-5s %10.0f bytes %9.3f s %8.1f ms CPU  %s\n", row, sender, result.bytes,
              result.seconds, result.cpu_ms, result.intact ? "" : "NOT INTACT");
}

int run(int count, char** arguments) {
  std::size_t runs = 1, size = 262144, lanes = 4, buffer = 0;
  std::vector<std::string_view> wanted;
  for (int i = 1; i < count; ++i) {
    const std::string_view word = arguments[i];
    const bool option = word == "-n" || word == "-k" || word == "-j" || word == "-b";
    if (!option) {
      wanted.push_back(word);
    } else if (++i < count) {
      const std::size_t number = std::max(1UL, std::strtoul(arguments[i], nullptr, 10));
      (word == "-n"   ? runs
       : word == "-j" ? lanes
       : word == "-b" ? buffer
                      : size) = word == "-k" ? number * 1024 : number;
    }
  }
  std::vector<Job> jobs;
  for (const Row& row : rows) {
    if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), row.name) == wanted.end())
      continue;
    for (std::size_t i = 0; i < 2 * runs; ++i) jobs.push_back({&row, buffer, i < runs});
  }
  const std::vector<Result> results = run_all(jobs, size, lanes);
  bool intact = true;
  for (std::size_t at = 0; at < jobs.size(); at += runs) {
    const auto first = results.begin() + static_cast<std::ptrdiff_t>(at);
    const Result result = median({first, first + static_cast<std::ptrdiff_t>(runs)});
    print(jobs[at].row->name, jobs[at].ours ? "orvex" : "sz", result);
    intact = intact && result.intact;
  }
  return intact ? 0 : 1;
}

}  // namespace
}  // namespace orvex::bench

int main(int count, char** arguments) {
  return orvex::bench::run(count, arguments);
}
