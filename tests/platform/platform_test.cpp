#include "platform/files.h"
#include "platform/ports.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "base/run_time_error.h"
#include "platform/linux_ports.h"
#include "testing/virtual/temporary_folder.h"

namespace orvex::testing {
namespace {

namespace fs = std::filesystem;

TEST(ReplaceFile, replaces_a_file_whole_and_keeps_its_rights_and_links) {
  const TemporaryFolder folder;
  const fs::path file = folder.write("file", "old and longer");
  fs::permissions(file, fs::perms{0640});
  fs::create_symlink("file", folder / "link");
  fs::create_symlink("fresh", folder / "ahead");
  EXPECT_FALSE(platform::replace_file(folder / "link", "new"));
  EXPECT_EQ(content(file), "new");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms{0640});
  EXPECT_TRUE(fs::is_symlink(folder / "link"));
  EXPECT_FALSE(platform::replace_file(folder / "ahead", "made"));
  EXPECT_EQ(content(folder / "fresh"), "made");
  const mode_t mask = ::umask(022);
  EXPECT_FALSE(platform::replace_file(folder / "own", std::string(1 << 20, '\0')));
  EXPECT_EQ(::umask(mask), mode_t{022}) << "the mask is the process's own";
  EXPECT_EQ(fs::status(folder / "own").permissions(), fs::perms{0644});
  EXPECT_EQ(fs::file_size(folder / "own"), 1U << 20);
}

TEST(ReplaceFile, takes_over_the_rights_to_read_write_and_run_and_no_others) {
  const TemporaryFolder folder;
  for (const int special : {04000, 02000, 01000, 07000}) {
    const fs::path file = folder.write("file", "old");
    fs::permissions(file, static_cast<fs::perms>(special | 0755));
    EXPECT_FALSE(platform::replace_file(file, "new"));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms{0755});
  }
}

TEST(ReplaceFile, leaves_the_old_file_and_no_other_where_it_fails) {
  const TemporaryFolder folder;
  folder.write("file", "old");
  fs::create_symlink("loop", folder / "loop");
  const struct {
    fs::path path;
    int number;
  } table[]{{folder.path(), error_number::path_file_access},
            {folder / "missing/file", error_number::path_not_found},
            {folder / "file/x", error_number::path_not_found},
            {folder / "loop", error_number::path_file_access},
            {folder / std::string(300, 'n'), error_number::path_file_access},
            {"/dev/full", error_number::disk_full}};
  for (const auto& row : table) {
    const auto error = platform::replace_file(row.path, "new");
    EXPECT_TRUE(error) << row.path;
    EXPECT_EQ(error_of(error).number, row.number) << row.path;
    EXPECT_NE(error_of(error).text, "");
  }
  EXPECT_FALSE(platform::replace_file("/dev/null", "new"));
  EXPECT_EQ(content(folder / "file"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2);
  const auto read_only_disk = std::make_error_code(std::errc::read_only_file_system);
  EXPECT_EQ(error_of(read_only_disk).number, error_number::permission_denied);
}

TEST(InputFile, takes_regular_files_alone_and_waits_for_none) {
  const TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  platform::InputFile file;
  for (const fs::path& path :
       {folder.path(), folder / "pipe", fs::path("/dev/zero"), folder / "missing", fs::path()}) {
    EXPECT_TRUE(file.open(path)) << path;
  }
  ASSERT_FALSE(file.open(folder.write("file", "0123456789")));
  EXPECT_EQ(file.size(), 10U);
  EXPECT_EQ(file.mode() & S_IFMT, static_cast<unsigned>(S_IFREG));
  EXPECT_GT(file.modified(), 1'500'000'000);
  std::string into(4, '?');
  std::error_code error;
  EXPECT_EQ(file.read(3, into, error), 4U);
  EXPECT_EQ(into, "3456");
  EXPECT_EQ(file.read(8, into, error), 2U);
  EXPECT_EQ(file.read(99, into, error), 0U);
  EXPECT_FALSE(error);
  file.close();
  EXPECT_EQ(file.read(0, into, error), 0U);
  EXPECT_TRUE(error);
}

TEST(SerialPorts, come_in_the_order_of_their_kinds_and_numbers) {
  const TemporaryFolder folder;
  for (const char* name : {"ttyUSB10", "ttyUSB2", "ttyACM0", "ttyS1", "ttyS0", "ttyS10", "ttyAMA0",
                           "tty1", "console", "ttyprintk", "ttyS", "ttyS99999999999"}) {
    fs::create_directory(folder / name);
  }
  folder.write("ttyS0/type", "4\n");
  folder.write("ttyS1/type", "0\n");  // a node without a UART
  folder.write("ttyS10/type", "4\n");
  folder.write("ttyAMA0/type", "32\n");
  EXPECT_EQ(
      platform::serial_ports(folder.path()),
      (std::vector<std::string>{"ttyS0", "ttyS10", "ttyAMA0", "ttyUSB2", "ttyUSB10", "ttyACM0"}));
  EXPECT_TRUE(platform::serial_ports(folder / "missing").empty());
}

TEST(SerialPorts, a_link_decides_also_where_it_leads_nowhere) {
  const TemporaryFolder folder;
  fs::create_symlink("/dev/null", folder / "device");
  fs::create_symlink("device", folder / "com1");
  fs::create_symlink("unplugged", folder / "com2");
  EXPECT_EQ(platform::device_of_port(1, folder.path()), "/dev/null");
  EXPECT_EQ(platform::device_of_port(2, folder.path()), (folder / "unplugged").string());
  fs::create_symlink("com3", folder / "com3");
  EXPECT_EQ(platform::device_of_port(3, folder.path()), "");
  EXPECT_EQ(platform::device_of_port(0, folder.path()), "");
  const auto ports = platform::serial_ports("/sys/class/tty");
  EXPECT_EQ(platform::device_of_port(3, folder.path()), ports.size() < 3 ? "" : "/dev/" + ports[2]);
}

TEST(SerialPorts, a_link_to_the_network_counts_if_it_is_the_users_own_or_roots) {
  const TemporaryFolder folder;
  const std::string name = "rfc2217://till7.example:2300";
  fs::create_symlink(name, folder / "com1");
  fs::create_symlink("com1", folder / "com2");
  EXPECT_EQ(platform::device_of_port(1, folder.path()), name);
  EXPECT_EQ(platform::network_name_of(folder / "com1"), name);
  EXPECT_FALSE(platform::is_foreign_network_link(folder / "com1"));
  EXPECT_EQ(platform::device_of_port(2, folder.path()), (folder / name).lexically_normal())
      << "only its own text counts";
  EXPECT_EQ(platform::network_name_of(folder / "missing"), "");
  constexpr uid_t nobody = 65534;
  if (::lchown((folder / "com1").c_str(), nobody, nobody) != 0) GTEST_SKIP() << "needs root";
  EXPECT_EQ(platform::network_name_of(folder / "com1"), "");
  EXPECT_TRUE(platform::is_foreign_network_link(folder / "com1"));
  EXPECT_EQ(platform::device_of_port(1, folder.path()), folder / "com1");
}

TEST(SerialPorts, a_lock_that_is_no_small_file_is_told_without_opening_it) {
  const std::string name = "orvex-test/" + std::to_string(::getpid());
  const fs::path lock = "/tmp/LCK..orvex-test_" + std::to_string(::getpid());
  const auto is_odd = [&] { return platform::has_odd_lock("/dev/" + name); };
  EXPECT_FALSE(is_odd());
  std::ofstream(lock) << std::string(1024, ' ');
  EXPECT_FALSE(is_odd());
  fs::resize_file(lock, 1025);
  EXPECT_TRUE(is_odd());
  fs::remove(lock);
  fs::create_symlink("/nowhere", lock);
  EXPECT_TRUE(is_odd());
  fs::remove(lock);
  ASSERT_EQ(::mkfifo(lock.c_str(), 0), 0);
  EXPECT_TRUE(is_odd());
  fs::remove(lock);
}

TEST(SerialPorts, a_user_who_may_not_open_the_device_is_told_the_group_that_may) {
  const TemporaryFolder folder;
  const fs::path device = folder.write("device", "");
  EXPECT_EQ(platform::missing_right(device), "");
  EXPECT_EQ(platform::missing_right(folder / "missing"), "");
  fs::permissions(folder.path(), fs::perms{0755});
  fs::permissions(device, fs::perms{0060});
  const std::string group = ::getgrgid(::getegid())->gr_name;
  constexpr uid_t nobody = 65534;
  EXPECT_EXIT(
      {
        if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0)) std::exit(1);
        std::fputs(platform::missing_right(device).c_str(), stderr);
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "^permission denied \\(group " + group + "\\)$");
}

TEST(SerialPorts, device_kinds_are_told_apart) {
  const TemporaryFolder folder;
  EXPECT_EQ(platform::kind_of_device("/dev/zero"), platform::DeviceKind::none);
  EXPECT_EQ(platform::kind_of_device("/dev/ptmx"), platform::DeviceKind::serial_port);
  EXPECT_EQ(platform::kind_of_device(folder.write("file", "x")), platform::DeviceKind::none);
  EXPECT_EQ(platform::kind_of_device(""), platform::DeviceKind::none);
}

TEST(SerialPorts, what_the_system_has_not_sent_is_told) {
  int ends[2]{};  // a socket answers the question, as a pseudo-terminal doesn't
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
  EXPECT_EQ(platform::unsent_bytes(ends[0]), 0U);
  ASSERT_EQ(::write(ends[0], "12345", 5), 5);
  EXPECT_GE(platform::unsent_bytes(ends[0]), 5U);
  for (const int end : ends) ::close(end);
  EXPECT_EQ(platform::unsent_bytes(-1), 0U);
}

}  // namespace
}  // namespace orvex::testing
