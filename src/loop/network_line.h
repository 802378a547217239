#pragma once

#include <QObject>
#include <QTcpSocket>
#include <QTimer>
#include <functional>
#include <optional>
#include <string>

#include "base/network_address.h"
#include "link/line.h"
#include "loop/event_loop.h"
#include "network/com_port_client.h"

namespace orvex {

/// A serial line at the other end of the network, by RFC 2217.
///
/// open() and configure() keep the event loop running until the server has answered; so they are
/// for jobs, and throw Ended where the process ends meanwhile. No second wait begins inside one.
class NetworkLine final : public QObject, public Line {
 public:
  /// For the host's name and the connection: what a mobile network takes to wake up, and two
  /// repeats of a lost packet.
  static constexpr Time connection_limit = std::chrono::seconds(5);

  /// `loop` must outlive the line. `address_of` gives the address that a port stands for.
  NetworkLine(EventLoop& loop, std::function<std::string(int com_port)> address_of);
  ~NetworkLine() override;

  void listen(Listener& listener) override { listener_ = &listener; }
  void open(int com_port, const LineSettings& settings) override;
  void close() override;
  bool is_open() const override { return open_; }
  std::string device_path(int com_port) const override { return address_of_(com_port); }
  Time configure(const LineSettings& settings) override;
  void write(std::string_view bytes) override;
  std::string read() override;
  std::size_t waiting() const override;
  std::size_t unsent() const override;
  void discard_unsent() override;

 private:
  bool meet(const NetworkAddress& address, const LineSettings& settings);
  void connect_to(const NetworkAddress& address);
  void settle();
  void pump_until(Time limit, const std::function<bool()>& over);
  void arrived();
  void sent();
  void look_at_connection();
  void look_at_client();
  void hand_over();
  void lose(std::string why);

  EventLoop& loop_;
  std::function<std::string(int)> address_of_;
  Listener* listener_ = nullptr;
  QTcpSocket socket_;
  QTimer wake_;
  std::optional<ComPortClient> client_;  ///< while there is a connection
  std::string loss_;                     ///< why the last one ended
  bool open_ = false;
  bool waits_ = false;
};

}  // namespace orvex
