#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "link/line.h"
#include "loop/event_loop.h"
#include "loop/network_line.h"

namespace orvex {

/// The line of a tool: one of the machine's own, or one in the network where the port's name says
/// so.
class PortLine final : public Line {
 public:
  /// `loop` must outlive the line. `links` is the folder of the links com1, com2 and so on; unless
  /// it is empty, `device` stands for every port.
  PortLine(EventLoop& loop, const std::filesystem::path& links, const std::string& device = {});

  void listen(Listener& listener) override;
  void open(int com_port, const LineSettings& settings) override;
  void close() override { line_->close(); }
  bool is_open() const override { return line_->is_open(); }
  std::string device_path(int com_port) const override;
  Time configure(const LineSettings& settings) override { return line_->configure(settings); }
  void write(std::string_view bytes) override { line_->write(bytes); }
  std::string read() override { return line_->read(); }
  std::size_t waiting() const override { return line_->waiting(); }
  std::size_t unsent() const override { return line_->unsent(); }
  void discard_unsent() override { line_->discard_unsent(); }

 private:
  const std::string device_;
  std::unique_ptr<Line> local_;
  std::string address_;
  NetworkLine network_;
  Line* line_;  ///< the one that was opened last
};

}  // namespace orvex
