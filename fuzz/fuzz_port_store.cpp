// The port configuration file.

#include <cstdint>

#include "fuzz/require.h"
#include "link/port_store.h"
#include "testing/virtual/temporary_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using orvex::fuzz::require;
  static const orvex::testing::TemporaryFolder folder;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto path = folder.write(orvex::ini_name, text);

  orvex::PortState state;
  orvex::Load_Ini(state, folder.path());
  require(state.PortCom.empty() || orvex::stored_port(state.PortCom) != 0, "a port of 1 to 6");
  const std::string kept = orvex::testing::content(path);
  require(kept == text || kept == "PORTCOM=1;PORTSET=9600,n,8,1;SUPPSET=000000;\r\n",
          "a file that is kept or repaired");

  orvex::PortState again;
  orvex::Load_Ini(again, folder.path());
  require(again.PortCom == state.PortCom && again.PortSet == state.PortSet,
          "a second start like the first");
  return 0;
}
