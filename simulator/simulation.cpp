#include "simulator/simulation.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <system_error>

#include "simulator/printable.h"
#include "simulator/rz_loader.h"

namespace orvex::simulator {
namespace {

using namespace std::chrono_literals;

/// The PC has to be quiet for so long before the scanner's power is cycled.
constexpr Time quiet_before_restart = 1s;
constexpr int bits_in_byte = 10;

Time time_of_byte(int rate) {
  return Time(1s) * bits_in_byte / rate;
}

Time now() {
  return std::chrono::steady_clock::now().time_since_epoch();
}

}  // namespace

Simulation::Simulation(const ProgramOptions& options)
    : options_(options),
      scanner_(options.scanner, [this](Time at) { return make_loader(at); }),
      device_(options.link),
      console_(scanner_, device_) {
  scanner_.rate(options.rate);
  scanner_.faults = options.faults;
}

void Simulation::run(const volatile std::sig_atomic_t& stop) {
  std::printf("%s leads to %s, scanner at %d\n", options_.link.c_str(), device_.path().c_str(),
              scanner_.rate());
  std::fflush(stdout);
  while (stop == 0 && wait()) {
    listen();
    hear_what_is_through();
    speak();
    look_after_load();
    look_after_line();
    std::fflush(stdout);
  }
}

std::unique_ptr<Loader> Simulation::make_loader(Time at) {
  return std::make_unique<RzLoader>(options_.receiver, receiver_output_, at);
}

std::optional<Time> Simulation::next_moment() const {
  auto next = scanner_.due();
  const auto consider = [&](Time time) { next = next ? std::min(*next, time) : time; };
  if (!outgoing_.empty()) consider(next_byte_at_);
  if (!incoming_.empty()) consider(incoming_.front().at);
  if (scanner_.waits_for_restart() && !options_.manual_restart) {
    consider(last_heard_ + quiet_before_restart);
  }
  return next;
}

bool Simulation::wait() {
  // A negative descriptor is passed over.
  std::array<pollfd, 3> sources{{{console_.descriptor(), POLLIN, 0},
                                 {device_.descriptor(), POLLIN, 0},
                                 {receiver_output_, POLLIN, 0}}};
  timespec span{};
  const auto next = next_moment();
  if (next) {
    const Time left = std::max(*next - now(), Time{});
    span.tv_sec = left / 1s;
    span.tv_nsec = (left % 1s).count();
  }
  sigset_t none;
  ::sigemptyset(&none);
  const int ready = ::ppoll(sources.data(), sources.size(), next ? &span : nullptr, &none);
  return ready <= 0 || sources[0].revents == 0 || console_.obey();
}

void Simulation::listen() {
  const std::string bytes = device_.read();
  if (bytes.empty()) return;
  last_heard_ = now();
  if (const int rate = device_.rate(); rate != line_rate_) {
    line_rate_ = rate;
    std::printf("the PC talks at %d\n", rate);
  }
  for (const char byte : bytes) {
    incoming_free_at_ = std::max(incoming_free_at_, last_heard_);
    if (options_.paced && line_rate_ > 0) incoming_free_at_ += time_of_byte(line_rate_);
    incoming_.push_back({byte, line_rate_, incoming_free_at_});
  }
}

void Simulation::hear_what_is_through() {
  const Time until = now();
  while (!incoming_.empty() && incoming_.front().at <= until) {
    // Each byte is heard when the line has brought it, however late this process wakes.
    const int rate = incoming_.front().rate;
    const Time at = incoming_.front().at;
    std::string bytes;
    while (!incoming_.empty() && incoming_.front().at == at && incoming_.front().rate == rate) {
      bytes += incoming_.front().byte;
      incoming_.pop_front();
    }
    scanner_.hear(bytes, rate, at);
  }
  for (const auto& frame : scanner_.frames) std::printf("heard %s\n", printable(frame).c_str());
  scanner_.frames.clear();
}

void Simulation::speak() {
  while (true) {
    const int rate = scanner_.rate();
    const Time at = now();
    const Time begun = std::min(at, scanner_.due().value_or(at));
    const auto bytes = scanner_.say(at);
    if (bytes.empty()) break;
    if (outgoing_.empty()) next_byte_at_ = std::max(next_byte_at_, begun) + time_of_byte(rate);
    for (const char byte : bytes) outgoing_.push_back({byte, rate});
  }
  send_outgoing();
}

void Simulation::send_outgoing() {
  std::string ready;
  const Time at = now();
  const int line_rate = device_.rate();
  while (!outgoing_.empty() && (!options_.paced || next_byte_at_ <= at)) {
    const Outgoing next = outgoing_.front();
    outgoing_.pop_front();
    if (!outgoing_.empty()) next_byte_at_ += time_of_byte(outgoing_.front().rate);
    if (next.rate == line_rate || scanner_.faults.junk_at_wrong_rate) ready += next.byte;
  }
  device_.write(ready);
}

void Simulation::look_after_line() {
  if (!scanner_.wants_unplug()) return;
  scanner_.unplugged();
  device_.unplug();
  std::printf("unplugged\n");
}

void Simulation::look_after_load() {
  if (scanner_.loading() != loading_) {
    loading_ = scanner_.loading();
    if (loading_) {
      std::printf("loader started\n");
    } else if (!scanner_.waits_for_restart()) {
      std::printf("load failed\n");
    }
  }
  if (!scanner_.waits_for_restart()) {
    file_told_ = false;
    return;
  }
  if (!file_told_) {
    file_told_ = true;
    std::printf("loaded %zu bytes\n", scanner_.loaded_file().size());
    if (!options_.save_image.empty()) {
      std::ofstream(options_.save_image, std::ios::binary) << scanner_.loaded_file();
    }
  }
  if (options_.manual_restart || now() - last_heard_ < quiet_before_restart) return;
  scanner_.restart();
  std::printf("restarted at %d as %s\n", scanner_.rate(),
              printable(scanner_.options.identity.application1).c_str());
}

}  // namespace orvex::simulator
