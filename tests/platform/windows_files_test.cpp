// Files as Windows has them: open elsewhere, read-only, with names of every kind.
#include <windows.h>
// After windows.h.
#include <gtest/gtest.h>

#include <cstdlib>

#include "base/run_time_error.h"
#include "link/port_store.h"
#include "platform/files.h"
#include "platform/ports.h"
#include "testing/virtual/temporary_folder.h"

namespace orvex::testing {
namespace {

namespace fs = std::filesystem;

/// The number of the error, 0 if none.
int replaced(const fs::path& path, std::string_view bytes, platform::Links links = {}) {
  const auto error = platform::replace_file(path, bytes, links);
  return error ? error_of(error).number : 0;
}

int opened(const fs::path& path) {
  platform::InputFile file;
  const auto error = file.open(path);
  return error ? error_of(error).number : 0;
}

/// A file that somebody else has open and shares with nobody.
class Held {
 public:
  explicit Held(const fs::path& path)
      : handle_(::CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {}
  ~Held() { ::CloseHandle(handle_); }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;

 private:
  HANDLE handle_;
};

TEST(WindowsFiles, are_replaced_whole_under_names_of_every_kind) {
  const TemporaryFolder folder;
  for (const std::wstring& name :
       {std::wstring(L"plain.txt"), std::wstring(L"\u65E5\u672C.txt"),
        std::wstring(L"with blanks & 100 %.txt"), std::wstring(250, L'n')}) {
    const fs::path file = folder.path() / name;
    EXPECT_EQ(replaced(file, "old and longer"), 0);
    EXPECT_EQ(replaced(file, "new"), 0);
    EXPECT_EQ(content(file), "new");
    EXPECT_EQ(opened(file), 0);
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 4)
      << "nothing is left beside";
}

TEST(WindowsFiles, that_cannot_be_had_give_their_error_and_stay) {
  const TemporaryFolder folder;
  const fs::path file = folder.write("file", "old");
  const fs::path fixed = folder.write("fixed", "old");
  ::SetFileAttributesW(fixed.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(replaced(fixed, "new"), error_number::permission_denied);
  EXPECT_EQ(replaced(folder.path(), "new"), error_number::path_file_access);
  EXPECT_EQ(replaced(folder / "missing/file", "new"), error_number::path_not_found);
  EXPECT_EQ(opened(folder / "missing/file"), error_number::path_not_found);
  EXPECT_EQ(opened(folder / "missing"), error_number::file_not_found);
  EXPECT_EQ(opened(folder.path()), error_number::path_file_access);
  {
    const Held held(file);
    EXPECT_EQ(opened(file), error_number::file_already_open);
    EXPECT_EQ(replaced(file, "new"), error_number::permission_denied);
  }
  EXPECT_EQ(content(file), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2);
  ::SetFileAttributesW(fixed.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(WindowsFiles, the_stored_port_comes_back) {
  const TemporaryFolder folder;
  PortState state;
  Load_Ini(state, folder.path());
  EXPECT_TRUE(save_ini(state, 3, "19200,E,8,1"));
  PortState read;
  Load_Ini(read, folder.path());
  EXPECT_EQ(read.PortCom + " " + read.PortSet, "3 19200,E,8,1");
  EXPECT_TRUE(fs::is_directory(platform::state_folder()));
  EXPECT_EQ(platform::device_of_port(0, {}), "");
  EXPECT_EQ(platform::device_of_port(250, {}), "") << "there is no such port";
}

TEST(WindowsFiles, the_stored_port_is_written_in_place_where_its_folder_takes_no_new_file) {
  // Made by packaging/windows/test, which has several users.
  const char* locked = std::getenv("ORVEX_LOCKED_FOLDER");
  if (locked == nullptr) GTEST_SKIP() << "this user may make files everywhere";
  const fs::path folder(locked);
  PortState state;
  Load_Ini(state, folder);
  EXPECT_EQ(state.PortCom, "4");
  EXPECT_TRUE(save_ini(state, 2, "9600,N,8,1"));
  EXPECT_EQ(content(state.IniPath), "PORTCOM=2;PORTSET=9600,N,8,1;SUPPSET=;\r\n");
  EXPECT_EQ(replaced(state.IniPath, "no"), error_number::permission_denied) << "a user's own file";
  EXPECT_EQ(replaced(folder / "new", "no", platform::Links::replace),
            error_number::permission_denied);
  PortState fixed;
  Load_Ini(fixed, folder / "fixed");
  EXPECT_EQ(fixed.PortCom, "1") << "it holds no port and can't be mended";
  EXPECT_FALSE(save_ini(fixed, 2, "9600,N,8,1"));
  EXPECT_EQ(content(fixed.IniPath), "PORTCOM=9;");
}

}  // namespace
}  // namespace orvex::testing
