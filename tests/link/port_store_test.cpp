#include "link/port_store.h"

#include <gtest/gtest.h>

#include "testing/virtual/temporary_folder.h"

namespace orvex::testing {
namespace {

const std::string default_file = "PORTCOM=1;PORTSET=9600,n,8,1;SUPPSET=000000;\r\n";

TEST(PortStore, reads_what_can_be_read_and_repairs_the_rest) {
  const std::string most = "PORTCOM=2;UNKNOWN=" + std::string(32767 - 19, 'x') + ";";
  struct {
    std::string file;
    std::string com;
    std::string set;
    bool repaired;
  } const table[]{
      {default_file, "1", "9600,n,8,1", false},
      {"SUPPSET=000000;PORTCOM=2;PORTSET=19200,e,8,1;", "2", "19200,e,8,1", false},
      {"PORTCOM=6;", "6", "", false},
      {"PORTCOM=7;", "1", "9600,n,8,1", true},
      {"PORTCOM=0;", "1", "9600,n,8,1", true},
      {"PORTCOM=x;", "1", "9600,n,8,1", true},
      {"PORTCOM=;", "1", "9600,n,8,1", true},
      {"PORTCOM=2.0;", "2.0", "", false},
      {"PORTCOM=2.5;", "1", "9600,n,8,1", true},
      {"PORTCOM= 3 ;", " 3 ", "", false},
      {"portcom=2;PORTSET=a;", "", "a", false},
      {"PORTSET=19200,e,8,1;PORTCOM=9;", "1", "9600,n,8,1", true},
      {"PORTCOM=2;PORTSET=rubbish;SUPPSET=;\r\n", "2", "rubbish", false},
      {"PORTCOM=2;PORTSET=19200,e,8,1", "2", "", false},
      {"SHORT=;PORTCOM=2;", "", "", false},
      {"PORTCOM=3;;PORTSET=x;", "3", "", false},
      {"PORTCOM=2;PORTCOM=4;", "4", "", false},
      {"", "", "", false},
      {"\r\n", "", "", false},
      {most, "2", "", false},
      {most + "\n", "1", "9600,n,8,1", true},
  };
  for (const auto& row : table) {
    const TemporaryFolder folder;
    const auto path = folder.write("Orvex.INI", row.file);
    PortState state;
    Load_Ini(state, folder.path());
    const std::string name = row.file.substr(0, 60);
    EXPECT_EQ(state.PortCom, row.com) << name;
    EXPECT_EQ(state.PortSet, row.set) << name;
    EXPECT_EQ(content(path), row.repaired ? default_file : row.file) << name;
  }
}

TEST(PortStore, a_first_start_creates_the_file_and_one_that_cannot_goes_on_without) {
  const TemporaryFolder folder;
  PortState state;
  Load_Ini(state, folder.path());
  EXPECT_EQ(content(folder / "Orvex.INI"), default_file);
  PortState other;
  Load_Ini(other, folder / "missing");
  EXPECT_EQ(other.PortCom, "1");
  EXPECT_EQ(other.PortSet, "9600,n,8,1");
  EXPECT_FALSE(save_ini(other, 2, "9600,N,8,1"));
}

}  // namespace
}  // namespace orvex::testing
