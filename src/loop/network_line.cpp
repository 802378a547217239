#include "loop/network_line.h"

#include <QNetworkProxy>
#include <utility>

#include "base/run_time_error.h"
#include "base/while.h"
#include "platform/sockets.h"

namespace orvex {
namespace {

/// More than any line brings between two pumps.
constexpr qint64 most_unread = 65536;
/// A server may need a moment to free its port from the connection before.
constexpr Time reopen_limit = std::chrono::seconds(2);
constexpr Time reopen_pause = std::chrono::milliseconds(200);
constexpr const char* closed_by_server = "the server closed the connection";

RunTimeError not_available(std::string cause) {
  return {error_number::device_error, std::move(cause)};
}

RunTimeError refused(const std::string& reason) {
  return not_available("The port is not available: " + reason);
}

std::string cause_of(const QTcpSocket& socket) {
  switch (socket.error()) {
    case QAbstractSocket::HostNotFoundError:
      return "no such host";
    case QAbstractSocket::ConnectionRefusedError:
      return "connection refused";
    case QAbstractSocket::RemoteHostClosedError:
      return closed_by_server;
    case QAbstractSocket::SocketTimeoutError:
      return "no answer from the server";
    default:
      return socket.errorString().toLocal8Bit().toStdString();
  }
}

}  // namespace

NetworkLine::NetworkLine(EventLoop& loop, std::function<std::string(int)> address_of)
    : loop_(loop), address_of_(std::move(address_of)) {
  socket_.setProxy(QNetworkProxy::NoProxy);  // it would be a host that the user hasn't named
  socket_.setReadBufferSize(most_unread);
  wake_.setSingleShot(true);
  wake_.setTimerType(Qt::PreciseTimer);
  connect(&socket_, &QTcpSocket::readyRead, this, &NetworkLine::arrived);
  // A write tells these at once, and the line only inside a pump.
  connect(&socket_, &QTcpSocket::bytesWritten, this, &NetworkLine::sent, Qt::QueuedConnection);
  connect(&socket_, &QTcpSocket::stateChanged, this, &NetworkLine::look_at_connection,
          Qt::QueuedConnection);
}

NetworkLine::~NetworkLine() {
  close();
}

void NetworkLine::open(int com_port, const LineSettings& settings) {
  if (waits_) throw not_available("it is being opened");
  close();
  const auto address = parse_network_address(address_of_(com_port));
  if (!address) throw not_available("not of the form rfc2217://HOST:PORT");
  const While waiting(waits_);
  try {
    const Time until = loop_.now() + reopen_limit;
    while (!meet(*address, settings)) {
      if (loss_ != closed_by_server) throw not_available(loss_);
      if (loop_.now() >= until) throw not_available(loss_ + "; its port may be in use");
      pump_until(loop_.now() + reopen_pause, [] { return false; });
    }
  } catch (...) {
    close();
    throw;
  }
  open_ = true;
}

/// False where the server has ended it, by its words or by closing the connection.
bool NetworkLine::meet(const NetworkAddress& address, const LineSettings& settings) {
  loss_ = "closed";
  connect_to(address);
  client_.emplace(settings, loop_.now());
  hand_over();
  settle();
  return client_.has_value();
}

void NetworkLine::connect_to(const NetworkAddress& address) {
  socket_.connectToHost(QString::fromStdString(address.host), address.port);
  const auto is_over = [this] {
    return socket_.state() == QAbstractSocket::ConnectedState ||
           socket_.state() == QAbstractSocket::UnconnectedState;
  };
  pump_until(loop_.now() + connection_limit, is_over);
  if (socket_.state() == QAbstractSocket::HostLookupState) {
    throw not_available("no answer about the host's name");
  }
  if (!is_over()) throw not_available("no answer from the server");
  if (socket_.state() != QAbstractSocket::ConnectedState) throw not_available(cause_of(socket_));
  socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
  platform::watch_connection(socket_.socketDescriptor());
}

/// Waits until the client has nothing more to wait for, or is gone.
void NetworkLine::settle() {
  while (client_ && client_->due()) {
    pump_until(*client_->due(),
               [this, due = client_->due()] { return !client_ || client_->due() != due; });
    if (!client_) return;
    client_->tick(loop_.now());
    look_at_client();
  }
}

void NetworkLine::pump_until(Time limit, const std::function<bool()>& over) {
  while (!over() && loop_.now() < limit) {
    wake_.start(std::chrono::ceil<std::chrono::milliseconds>(limit - loop_.now()));
    loop_.pump(Wait::for_event);
  }
  wake_.stop();
}

void NetworkLine::close() {
  open_ = false;
  client_.reset();
  if (socket_.state() == QAbstractSocket::UnconnectedState) return;
  // A connection that is closed with bytes unread takes back what it has sent.
  socket_.flush();
  socket_.readAll();
  socket_.abort();
}

Time NetworkLine::configure(const LineSettings& settings) {
  if (!open_) throw port_not_open_error();
  if (waits_) throw refused("it is being set");
  const While waiting(waits_);
  const Time began = loop_.now();
  client_->set(settings, began);
  hand_over();
  settle();
  if (!open_) throw refused(loss_);
  if (!client_->refusal().empty()) throw refused(client_->refusal());
  return loop_.now() - began;
}

void NetworkLine::write(std::string_view bytes) {
  if (!open_) throw port_not_open_error();
  client_->send(bytes);
  hand_over();
}

std::string NetworkLine::read() {
  return client_ ? client_->take_data() : std::string{};
}

std::size_t NetworkLine::waiting() const {
  return client_ ? client_->waiting() : 0;
}

/// A discard that the server has not confirmed counts as one byte: where the line is closed before,
/// what was written behind it, such as the end of a transfer, may be lost on the way.
std::size_t NetworkLine::unsent() const {
  if (!client_) return 0;
  return client_->unsent() + (client_->is_discarding() ? 1 : 0) +
         static_cast<std::size_t>(socket_.bytesToWrite()) +
         platform::unsent_in_socket(socket_.socketDescriptor());
}

void NetworkLine::discard_unsent() {
  if (!client_) return;
  client_->discard();
  // In one piece with what is written next, so that the server's answer tells of both.
  QMetaObject::invokeMethod(this, &NetworkLine::hand_over, Qt::QueuedConnection);
}

void NetworkLine::arrived() {
  const QByteArray bytes = socket_.readAll();
  if (!client_) return;
  client_->receive({bytes.data(), static_cast<std::size_t>(bytes.size())}, loop_.now());
  look_at_client();
}

void NetworkLine::sent() {
  hand_over();
  loop_.handle_line([this] {
    if (open_) listener_->bytes_sent();
  });
}

void NetworkLine::look_at_connection() {
  // The news may be older than the connection.
  if (client_ && socket_.state() == QAbstractSocket::UnconnectedState) lose(cause_of(socket_));
}

void NetworkLine::look_at_client() {
  if (client_->state() == ComPortClient::State::failed) return lose(client_->reason());
  hand_over();
  loop_.handle_line([this] {
    if (open_ && waiting() > 0) listener_->bytes_arrived();
  });
}

/// What stands in the socket can't be dropped any more, so that it gets no more than it takes.
void NetworkLine::hand_over() {
  if (!client_ || socket_.bytesToWrite() > 0) return;
  if (socket_.state() != QAbstractSocket::ConnectedState) return;
  const std::string bytes = client_->take_output();
  socket_.write(bytes.data(), static_cast<qint64>(bytes.size()));
  socket_.flush();
}

void NetworkLine::lose(std::string why) {
  loss_ = std::move(why);
  const bool was_open = open_;
  close();
  if (was_open) loop_.handle([this] { listener_->line_lost(loss_); });
}

}  // namespace orvex
