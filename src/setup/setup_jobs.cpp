#include "setup/setup_jobs.h"

#include <array>
#include <cmath>
#include <limits>
#include <numeric>

#include "base/number.h"
#include "base/run_time_error.h"
#include "setup/apply.h"

namespace orvex {
namespace {

/// Scanners below this revision of Application 1 aren't asked for their serial number.
constexpr int first_revision_with_serial_number = 322;

/// Characters 1, 3 and 4 of the reply as a number: 321 for "3.21".
std::int16_t revision_number(const std::string& reply) {
  std::string digits = reply.substr(0, 1);
  if (reply.size() > 2) digits += reply.substr(2, 2);
  const auto number = read_number(digits);
  if (!number) throw type_mismatch_error();
  const double rounded = std::nearbyint(*number);
  if (std::abs(rounded) > std::numeric_limits<std::int16_t>::max()) throw overflow_error();
  return static_cast<std::int16_t>(rounded);
}

struct Query {
  std::string_view tag;
  std::string_view error;
};

constexpr std::array revision_queries{
    Query{"<APP1RV:>", "Error in App1 Rev"},        Query{"<APP2RV:>", "Error in App2 Rev"},
    Query{"<HARDRV:>", "Error in Hardware Rev"},    Query{"<FINGER:>", "Error in Model Rev"},
    Query{"<WEBSIT:>", "Error in Web information"},
};

bool ask(ScannerLink& link, const Query& query) {
  auto& panel = link.forms.form1.sbrStatus.Panels[2];
  const bool done = link.exchange.Send_Tag(query.tag) == 1;
  panel = done ? "" : query.error;
  return done;
}

void receive_identity(ScannerLink& link) {
  Form1& form1 = link.forms.form1;
  for (const int row : {1, 2, 3}) form1.labRevision[row].Caption.clear();
  for (const Query& query : revision_queries) {
    if (!ask(link, query)) return;
  }
  if (link.state.App1RevNumber < first_revision_with_serial_number) {
    form1.Label4.Caption = "NOT SUPPORTED";
    return;
  }
  ask(link, {"<SERIAL:>", "Error in Serial Number"});
}

std::string join(const std::vector<std::string>& tags) {
  return std::accumulate(tags.begin(), tags.end(), std::string{});
}

}  // namespace

void send_setup(ScannerLink& link, const ScannerSetup& setup) {
  send_setup(link, Setup_Tag_List(setup), port_settings(setup));
}

bool send_setup(ScannerLink& link, const std::vector<std::string>& tags,
                const std::string& settings) {
  Form1& form1 = link.forms.form1;
  auto& panel = form1.sbrStatus.Panels[2];
  panel.clear();
  enable_scanner_buttons(form1, false);
  panel = "Sending the setup";
  const bool taken = link.exchange.Send_Tag(join(tags)) == 1;
  if (taken) {
    panel.clear();
    try {
      link.MSComm1.Settings(settings);
    } catch (const RunTimeError&) {
      // The scanner has taken the setup; panel 1 shows the settings that the port still has.
    }
    link.exchange.show_port_line();
  } else {
    panel = "Error in Sending";
  }
  enable_scanner_buttons(form1, true);
  return taken;
}

void receive_setup(ScannerLink& link) {
  Form1& form1 = link.forms.form1;
  enable_scanner_buttons(form1, false);
  form1.sbrStatus.Panels[2].clear();
  if (ask(link, {"<SETPAR:>", "Error in Receiving"})) receive_identity(link);
  enable_scanner_buttons(form1, true);
}

bool send_factory_default(ScannerLink& link) {
  if (link.exchange.Send_Tag("<FACDEF=1>") != 1) return false;
  try {
    link.MSComm1.Settings("9600,N,8,1");
  } catch (const RunTimeError&) {
    // As for a sent setup.
  }
  link.exchange.show_port_line();
  return true;
}

void factory_default(ScannerLink& link) {
  Form1& form1 = link.forms.form1;
  auto& panel = form1.sbrStatus.Panels[2];
  enable_scanner_buttons(form1, false);
  panel.clear();
  if (send_factory_default(link)) {
    panel.clear();
    receive_setup(link);
  } else {
    panel = "Error in Sending Defaults";
  }
  enable_scanner_buttons(form1, true);
}

void work_on_reply(ScannerLink& link, ScannerSetup& setup, std::string_view tag,
                   const std::string& reply) {
  Form1& form1 = link.forms.form1;
  constexpr std::size_t revision_size = 7;
  constexpr std::size_t model_size = 8;
  constexpr std::size_t address_size = 17;
  const auto revision = [&](int row, std::size_t size) {
    form1.labRevision[row].Caption = " " + reply.substr(0, size);
  };
  if (tag != "<SETPAR:>" && reply.size() > most_in_reply) throw overflow_error();
  if (tag == "<APP1RV:>") {
    if (link.state.StartUpQuery != -1) revision(1, revision_size);
    link.state.App1RevNumber = revision_number(reply);
  } else if (tag == "<APP2RV:>") {
    revision(2, revision_size);
  } else if (tag == "<HARDRV:>") {
    revision(3, revision_size);
  } else if (tag == "<FINGER:>") {
    revision(4, model_size);
  } else if (tag == "<WEBSIT:>") {
    form1.labWeb.Caption = reply.substr(0, address_size);
  } else if (tag == "<SERIAL:>") {
    form1.Label4.Caption = reply;
  } else if (tag == "<SETPAR:>") {
    form1.sbrStatus.Panels[2] = "Current Settings";
    // A copy, since the pump inside may bring something that empties the reply.
    apply_reply(setup, std::string(reply), [&] { link.windows.pump(Wait::no); });
  }
}

std::string port_settings(const ScannerSetup& setup) {
  constexpr std::array letters{",n", ",o", ",e"};
  std::string text(setup.value(Field::RSBAUD));
  text += letters[setup.choice(Field::RSPRTY)];
  text += ',';
  text += setup.value(Field::RSBITS);
  text += ',';
  text += setup.value(Field::RSSTOP);
  return text;
}

}  // namespace orvex
