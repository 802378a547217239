#include "bench/upload_pair.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "upgrade/image_source.h"
#include "upgrade/zmodem_sender.h"
#include "virtual/loading.h"
#include "virtual/real_peer.h"
#include "virtual/temporary_folder.h"

namespace orvex::bench {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using test::steady_now;

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

[[noreturn]] void send_ours(const fs::path& file, int fd) {
  ZmodemSender sender(open_image(file), steady_now());
  test::drive(sender, fd, steady_now() + 1h);
  _exit(sender.state() == FileEngine::State::complete ? 0 : 1);
}

UploadResult run_upload(const UploadJob& job) {
  const test::TemporaryFolder folder;
  const std::string data = job.firmware ? firmware_like(job.size) : test::random_image(job.size, 1);
  const fs::path file = folder.write("upload.bin", data);
  fs::create_directory(folder / "got");

  test::Pty port, device;
  const pid_t rz =
      test::start_on(device.slave(), folder / "got", {"rz", "--binary", "--overwrite", "-q"});
  const Time began = steady_now();
  pid_t sender = 0;
  if (!job.ours) {
    sender = test::start_on(port.slave(), folder.path(), {"sz", "--binary", "-q", "upload.bin"});
  } else if ((sender = fork()) == 0) {
    close(port.master());
    send_ours(file, port.slave());
  }
  port.close_slave();
  device.close_slave();
  RelayedLine there(port.master(), device.master(), job.there);
  RelayedLine back(device.master(), port.master(), job.back);
  relay(there, back, began + 30min);

  kill(sender, SIGTERM);  // both have ended, or never will
  kill(rz, SIGTERM);
  int status = 0;
  rusage usage{};
  wait4(sender, &status, 0, &usage);
  waitpid(rz, nullptr, 0);
  const auto seconds = [](timeval time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  return {
      .intact = status == 0 && test::content(folder / "got" / "upload.bin") == data,
      .seconds = std::chrono::duration<double>(there.last_byte() - began).count(),
      .bytes = static_cast<double>(there.bytes()),
      .processor = seconds(usage.ru_utime) + seconds(usage.ru_stime),
      .silence = std::chrono::duration<double>(there.source_left_at() - back.dies_at()).count()};
}

struct Report {
  std::size_t job = 0;
  UploadResult result;
};

}  // namespace

std::vector<UploadResult> run_uploads(const std::vector<UploadJob>& jobs, std::size_t lanes) {
  std::array<int, 2> reports{};
  if (pipe(reports.data()) != 0) std::exit(1);
  for (std::size_t lane = 0; lane < lanes; ++lane) {
    if (fork() != 0) continue;
    for (std::size_t job = lane; job < jobs.size(); job += lanes) {
      const Report report{job, run_upload(jobs[job])};
      if (write(reports[1], &report, sizeof report) != sizeof report) _exit(1);
    }
    _exit(0);
  }
  close(reports[1]);
  std::vector<UploadResult> results(jobs.size());
  for (Report report; read(reports[0], &report, sizeof report) == sizeof report;) {
    results[report.job] = report.result;
  }
  while (wait(nullptr) > 0) {
  }
  return results;
}

}  // namespace orvex::bench
