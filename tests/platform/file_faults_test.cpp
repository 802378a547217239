// The state file and a setup file on disks, in folders and under rights that refuse them, under a
// kill in the middle of a write and between two tools.
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <functional>
#include <random>

#include "link/port_store.h"
#include "platform/platform.h"
#include "support/temporary_folder.h"
#include "window/run_time_error.h"

namespace orvex::test {
namespace {

namespace fs = std::filesystem;

const std::string old_text = "PORTCOM=4;PORTSET=19200,e,8,1;SUPPSET=;\r\n";
constexpr uid_t nobody = 65534;

pid_t start_child(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work());
  return child;
}

/// What the child's work returned, -1 where something else ended it.
int result_of(pid_t child) {
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Unfinished files beside the one that was to be replaced.
std::ptrdiff_t unfinished(const fs::path& folder) {
  return std::count_if(fs::directory_iterator(folder), {}, [](const fs::directory_entry& entry) {
    return entry.path().filename().string().starts_with(".orvex-");
  });
}

/// Mounts a disk of two pages for this process alone; false where that is not allowed.
bool mount_disk(const fs::path& folder) {
  return ::unshare(CLONE_NEWNS) == 0 &&
         ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("none", folder.c_str(), "tmpfs", 0, "size=8192") == 0;
}

void write_old(const fs::path& folder, int folder_mode = 0755, int file_mode = 0644) {
  const fs::path file = folder / ini_name;
  std::ofstream(file, std::ios::binary) << old_text;
  fs::permissions(file, static_cast<fs::perms>(file_mode));
  fs::permissions(folder, static_cast<fs::perms>(folder_mode));
  if (::geteuid() != 0) return;
  for (const fs::path& path : {file, folder}) {
    ASSERT_EQ(::chown(path.c_str(), nobody, nobody), 0);
  }
}

struct Refusal {
  const char* name;
  /// Puts the folder into the state; false where the machine doesn't allow it.
  bool (*arrange)(const fs::path& folder);
  int error;           ///< number of the error of a write
  const char* stored;  ///< PortCom that a start finds
  bool limited = false;
};

const std::array refusals{
    Refusal{"full disk",
            [](const fs::path& folder) {
              if (!mount_disk(folder)) return false;
              write_old(folder);
              std::ofstream(folder / "filler") << std::string(8192, 'x');
              return true;
            },
            error_number::disk_full, "4"},
    Refusal{"limit of file sizes", [](const fs::path& folder) { return write_old(folder), true; },
            error_number::disk_full, "4", true},
    Refusal{"read-only disk",
            [](const fs::path& folder) {
              if (!mount_disk(folder)) return false;
              write_old(folder);
              return ::mount("none", folder.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) == 0;
            },
            error_number::permission_denied, "4"},
    Refusal{"read-only folder",
            [](const fs::path& folder) { return write_old(folder, 0555), true; },
            error_number::permission_denied, "4"},
    Refusal{"read-only file",
            [](const fs::path& folder) { return write_old(folder, 0755, 0444), true; },
            error_number::permission_denied, "4"},
    Refusal{"folder that can't be entered",
            [](const fs::path& folder) { return write_old(folder, 0), true; },
            error_number::permission_denied, "1"},
    Refusal{"folder in the file's place",
            [](const fs::path& folder) {
              fs::permissions(folder, fs::perms{0777});
              return fs::create_directory(folder / ini_name);
            },
            error_number::path_file_access, "1"},
};

TEST(FileFaults, a_write_that_is_refused_leaves_all_as_it_was) {
  for (const Refusal& row : refusals) {
    SCOPED_TRACE(row.name);
    const TemporaryFolder outer;
    fs::permissions(outer.path(), fs::perms{0755});
    const fs::path folder = outer / "state";
    fs::create_directory(folder);
    if (!row.arrange(folder)) {
      std::printf("%s: not allowed on this machine, left out\n", row.name);
      continue;
    }
    const auto as_user = [&](const std::function<int()>& work) {
      return result_of(start_child([&] {
        const rlimit limit{10, 10};
        ::signal(SIGXFSZ, SIG_IGN);
        if (row.limited && ::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 255;
        if (::geteuid() == 0 && ::setuid(nobody) != 0) return 255;
        return work();
      }));
    };
    const auto write = [&] {
      return error_of(platform::replace_file(folder / ini_name, "a setup in place of it")).number;
    };
    EXPECT_EQ(as_user(write), row.error);
    const auto start_and_save = [&] {
      PortState state;
      Load_Ini(state, folder);
      const bool saved = save_ini(state, 2, "9600,N,8,1");
      return saved ? 254 : state.PortCom == row.stored ? 0 : 253;
    };
    EXPECT_EQ(as_user(start_and_save), 0);
    if (::geteuid() != 0) fs::permissions(folder, fs::perms{0755});
    EXPECT_EQ(unfinished(folder), 0);
    EXPECT_TRUE(fs::is_directory(folder / ini_name) || content(folder / ini_name) == old_text);
    ::umount2(folder.c_str(), MNT_DETACH);
  }
}

TEST(FileFaults, a_link_in_place_of_the_state_file_gives_way_and_its_target_stays) {
  for (const char* target : {"target", "missing", ".", "/dev/null", "Orvex.INI"}) {
    SCOPED_TRACE(target);
    const TemporaryFolder folder;
    folder.write("target", "PORTCOM=9;");
    fs::create_symlink(target, folder / ini_name);
    PortState state;
    Load_Ini(state, folder.path());
    EXPECT_EQ(state.PortCom, "1");
    EXPECT_TRUE(save_ini(state, 3, "9600,N,8,1"));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / ini_name)));
    EXPECT_EQ(content(folder / "target"), "PORTCOM=9;");
    EXPECT_EQ(unfinished(folder.path()), 0);
  }
}

TEST(FileFaults, a_kill_in_the_middle_of_a_write_leaves_one_of_the_two_contents) {
  const TemporaryFolder folder;
  const std::array contents{std::string(300000, 'a'), std::string(70000, 'b')};
  const fs::path file = folder.write("setup.txt", contents[0]);
  std::mt19937 random(1);
  std::array<int, 2> seen{};
  for (int kill = 0; kill < 50; ++kill) {
    const pid_t child = start_child([&] {
      for (std::size_t turn = 1;; ++turn) {
        if (platform::replace_file(file, contents[turn % 2])) return 1;
      }
    });
    ::usleep(static_cast<useconds_t>(1000 + random() % 15000));
    ::kill(child, SIGKILL);
    EXPECT_EQ(result_of(child), -1) << "it wrote until it was killed";
    const std::string found = content(file);
    const auto which = std::ranges::find(contents, found) - contents.begin();
    ASSERT_LT(which, 2) << found.size() << " bytes";
    ++seen[static_cast<std::size_t>(which)];
  }
  std::printf("first content %d times, second %d times; %td unfinished beside it\n", seen[0],
              seen[1], unfinished(folder.path()));
  EXPECT_GT(seen[0], 0);
  EXPECT_GT(seen[1], 0);
}

TEST(FileFaults, two_tools_at_once_never_mix_what_they_save) {
  const TemporaryFolder folder;
  PortState state;
  Load_Ini(state, folder.path());
  const std::array texts{"2400,N,8,1", "115200,E,8,1"};
  const fs::path stop = folder / "stop";
  std::array<pid_t, 2> tools{};
  for (std::size_t tool = 0; tool < tools.size(); ++tool) {
    tools[tool] = start_child([&] {
      while (!fs::exists(stop)) {
        if (!save_ini(state, static_cast<int>(tool) + 1, texts[tool])) return 1;
      }
      return 0;
    });
  }
  std::array<int, 2> seen{};
  for (int i = 0; i < 1'000'000 && std::ranges::min(seen) < 500; ++i) {
    PortState read;
    Load_Ini(read, folder.path());
    if (read.PortSet == "9600,n,8,1" && std::ranges::max(seen) == 0)
      continue;  // none has saved yet
    const auto tool = std::ranges::find(texts, read.PortSet) - texts.begin();
    ASSERT_LT(tool, 2) << read.PortSet;
    ASSERT_EQ(stored_port(read.PortCom), tool + 1);
    ++seen[static_cast<std::size_t>(tool)];
  }
  folder.write("stop", "");
  for (const pid_t tool : tools) EXPECT_EQ(result_of(tool), 0);
  EXPECT_GE(std::ranges::min(seen), 500) << "reads of what the one and the other saved";
  EXPECT_EQ(unfinished(folder.path()), 0);
}

}  // namespace
}  // namespace orvex::test
