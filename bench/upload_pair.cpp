#include "bench/upload_pair.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <thread>

#include "testing/virtual/loading.h"
#include "testing/virtual/real_peer.h"
#include "testing/virtual/temporary_folder.h"
#include "transfer/image_source.h"
#include "transfer/zmodem_sender.h"

namespace orvex::bench {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using testing::steady_now;

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

/// Our sender in a process of its own; `report` gets how far its bar came.
[[noreturn]] void send_ours(const fs::path& file, int fd, int report) {
  ZmodemSender sender(open_image(file), steady_now());
  testing::drive(sender, fd, steady_now() + 1h);
  const auto shown = static_cast<double>(sender.progress());
  if (write(report, &shown, sizeof shown) != sizeof shown) _exit(2);
  _exit(sender.state() == FileEngine::State::complete ? 0 : 1);
}

double seconds_of(timeval time) {
  return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

double seconds_of(Time time) {
  return std::chrono::duration<double>(time).count();
}

/// The sender of a job, on `port`; `report` is a pipe for how far our bar came.
pid_t start_sender(const UploadJob& job, const fs::path& file, testing::Pty& port,
                   testing::Pty& device, const std::array<int, 2>& report) {
  if (!job.ours) {
    const std::vector<std::string> command{"sz", "--binary", "-q", file.filename().string()};
    return testing::start_on(port.slave(), file.parent_path().string(), command);
  }
  const pid_t process = fork();
  if (process != 0) return process;
  for (const int fd : {port.master(), device.master(), device.slave()}) close(fd);
  send_ours(file, port.slave(), report[1]);
}

/// Both ends of a job and the line between them; the receiver stores what it gets in `folder`.
UploadResult run_pair(const UploadJob& job, const fs::path& file, const std::string& folder) {
  testing::Pty port;
  auto device = std::make_unique<testing::Pty>();
  std::array<int, 2> report{};
  if (pipe(report.data()) != 0) std::exit(1);

  const pid_t receiver = start_receiver(job.peer, job.script, device->slave(), folder);
  if (job.peer == Peer::zmodem_js) std::this_thread::sleep_for(1s);  // node is slow to start
  const Time began = steady_now();
  const pid_t sender = start_sender(job, file, port, *device, report);
  close(report[1]);
  port.close_slave();
  device->close_slave();
  RelayedLine there(port.master(), device->master(), job.there);
  RelayedLine back(device->master(), port.master(), job.back);
  relay(there, back, began + 5min);

  int status = 0;
  rusage usage{};
  kill(sender, SIGTERM);  // it has ended, or never will
  wait4(sender, &status, 0, &usage);
  device.reset();
  testing::wait_for(receiver, 2s);
  UploadResult result;
  if (read(report[0], &result.shown, sizeof result.shown) < 0) result.shown = -1;
  close(report[0]);
  result.complete = status == 0;
  result.processor = seconds_of(usage.ru_utime) + seconds_of(usage.ru_stime);
  result.seconds = seconds_of(there.last_byte() - began);
  result.ended = seconds_of(there.source_left_at() - began);
  result.bytes = static_cast<double>(there.bytes());
  return result;
}

UploadResult run_upload(const UploadJob& job) {
  const testing::TemporaryFolder folder;
  const std::string data =
      job.firmware ? firmware_like(job.size) : testing::random_image(job.size, 1);
  const fs::path file = folder.write("upload.bin", data);
  fs::create_directory(folder / "got");
  UploadResult result = run_pair(job, file, folder / "got");
  const std::string got = testing::content(folder / "got" / "upload.bin");
  result.whole = got == data;
  result.received = static_cast<double>(got.size());
  return result;
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
