#include "console/session.h"

#include <algorithm>
#include <utility>

#include "console/port_holder.h"
#include "discovery/auto_baud.h"
#include "discovery/manual_port.h"
#include "link/port_store.h"
#include "loop/text.h"
#include "setup/apply.h"
#include "setup/setup_jobs.h"

namespace orvex {
namespace {

QString words_of(const std::string& path) {
  return QString::fromLocal8Bit(path.c_str());
}

/// The setup with the line's own settings wherever it isn't known.
ScannerSetup with_line_settings(const PartialSetup& setup, const LineSettings& line) {
  constexpr std::string_view parities[]{"NONE", "ODD", "EVEN"};
  const std::pair<Field, std::string> present[]{
      {Field::RSBAUD, std::to_string(line.baud)},
      {Field::RSPRTY, std::string(parities[static_cast<int>(line.parity)])},
      {Field::RSBITS, std::to_string(line.data_bits)},
      {Field::RSSTOP, std::to_string(line.stop_bits)}};
  ScannerSetup whole = setup.values();
  for (const auto& [field, value] : present) {
    if (!setup.knows(field)) {
      Apply_Tag(whole, "<" + std::string(parameter(field).name) + "=" + value + ">");
    }
  }
  return whole;
}

}  // namespace

Session::Session(Console& the_console, Line& line, EngineFactory make_engine,
                 std::filesystem::path state_folder, Trace* trace)
    : line_(line, trace),
      console(the_console),
      link(console, line_, std::move(make_engine),
           [this](std::string_view tag, const std::string& reply) {
             replies_[std::string(tag)] = reply;
             work_on_reply(link, setup_, tag, reply);
           }),
      upgrade(link, {[this] {
                       // The search that follows is the command's own; on a closed port none is
                       // made.
                       restart_due = true;
                       link.MSComm1.PortOpen(false);
                     },
                     [] {}}),
      state_folder_(std::move(state_folder)),
      exit_(console, link.MSComm1),
      pause_timer_(console, [this] { pause_timer_.Enabled(false); }) {
  console.schedule(pause_timer_);
  link.MSComm1.FileProgress = [this](std::int32_t done) { upgrade.FileProgress(done); };
  line_.transfer_runs = [this] { return link.MSComm1.FileBusy(); };
}

void Session::connect(const Options& options) {
  by_device_ = !options.device.empty();
  if (by_device_) {
    link.state.PortCom = "1";
  } else if (options.port) {
    link.state.PortCom = std::to_string(*options.port);
  } else {
    Load_Ini(link.state, state_folder_);
  }
  if (stored_port(link.state.PortCom) == 0) {
    throw Failure{exit_code::no_port, "The stored port number is invalid; --port names one"};
  }
  const auto settings = parse_settings(options.settings);
  // A search after a load looks at the parity that the scanner had.
  link.state.TryParity = settings ? parity_letter(settings->parity) : options.parity;
  if (!settings) {
    scan();
  } else {
    ping(options.settings);
  }
}

void Session::scan() {
  console.boxes.clear();
  mnuauto_Click(link);
  if (link.MSComm1.PortOpen()) return;
  if (line_.open_failure()) throw not_available(*line_.open_failure());
  throw Failure{exit_code::no_scanner, "No scanner answers on " + port_name()};
}

void Session::ping(const std::string& settings) {
  try {
    link.MSComm1.CommPort(stored_port(link.state.PortCom));
    link.MSComm1.Settings(settings);
    link.MSComm1.PortOpen(true);
  } catch (const RunTimeError& error) {
    throw not_available(error);
  }
  if (scanner_answers(link)) return;
  throw Failure{exit_code::no_scanner,
                "No scanner answers on " + port_name() + " at " + QString::fromStdString(settings)};
}

PartialSetup Session::receive() {
  console.boxes.clear();
  if (link.exchange.Send_Tag("<SETPAR:>") != 1) throw failed("Error in Receiving");
  return reported();
}

PartialSetup Session::receive_all() {
  console.boxes.clear();
  receive_setup(link);
  const std::string& error = link.forms.form1.sbrStatus.Panels[2];
  if (!error.empty()) throw failed(to_qt(error));
  return reported();
}

PartialSetup Session::reported() const {
  const auto reply = replies_.find("<SETPAR:>");
  return PartialSetup([&](ScannerSetup& setup) { apply_reply(setup, reply->second, [] {}); });
}

void Session::send(const PartialSetup& setup) {
  console.boxes.clear();
  auto tags = Setup_Tag_List(setup.values());
  std::vector<std::string> known;
  for (const auto& row : parameters()) {
    if (setup.knows(row.field)) known.push_back(tags[static_cast<std::size_t>(row.field)]);
  }
  const auto present = parse_settings(link.MSComm1.Settings()).value();
  const auto settings = port_settings(with_line_settings(setup, present));
  if (!send_setup(link, known, settings)) throw failed("Error in Sending");
}

PartialSetup Session::factory_default() {
  console.boxes.clear();
  if (!send_factory_default(link)) throw failed("Error in Sending Defaults");
  return receive();
}

std::optional<QString> Session::reply(const std::string& query) const {
  const auto found = replies_.find(query);
  if (found == replies_.end()) return std::nullopt;
  return to_qt(found->second.substr(0, found->second.find("\r\n")));
}

QJsonObject Session::place() const {
  const auto settings = parse_settings(link.MSComm1.Settings());
  return {{"port", by_device_ ? QJsonValue() : QJsonValue(link.MSComm1.CommPort())},
          {"device", words_of(link.MSComm1.device())},
          {"settings", QString::fromStdString(settings_text(settings.value()))}};
}

QString Session::place_in_words() const {
  return port_name() + ": " + place()["settings"].toString();
}

QString Session::port_name() const {
  QString device = words_of(link.MSComm1.device());
  if (by_device_) return device;
  const QString port = "port " + QString::number(link.MSComm1.CommPort());
  return device.isEmpty() ? port : port + " (" + device + ")";
}

Failure Session::failed(const QString& what) const {
  QString why = "the scanner doesn't answer";
  if (line_.lost()) {
    why = "the device went away: " + QString::fromLocal8Bit(line_.lost()->c_str());
  } else if (const QString error = console.last_error(); !error.isEmpty()) {
    why = error;
  } else if (line_.refused()) {
    why = "the scanner refused";
  }
  return {exit_code::scanner_failed, what + ": " + why};
}

Failure Session::not_available(const RunTimeError& error) const {
  QString cause = QString::fromLocal8Bit(error.text.c_str());
  const std::string device = link.MSComm1.device();
  if (cause.startsWith("held by")) {
    const QString holder = holder_of(device);
    if (!holder.isEmpty()) cause = "held by " + holder;
  }
  return {exit_code::no_port, port_name() + " is not available: " + cause};
}

void Session::pause(int milliseconds) {
  pause_timer_.Interval(milliseconds);
  pause_timer_.Enabled(true);
  while (pause_timer_.Enabled()) console.pump(Wait::for_event);
}

}  // namespace orvex
