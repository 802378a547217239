// The state file in folders and under rights that refuse it, and behind links.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <functional>

#include "base/run_time_error.h"
#include "link/port_store.h"
#include "platform/files.h"
#include "testing/virtual/temporary_folder.h"

namespace orvex::testing {
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

/// The reading end of a pipe.
class Reader {
 public:
  explicit Reader(const fs::path& path)
      : descriptor_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
  ~Reader() { ::close(descriptor_); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  std::string read() const {
    std::array<char, 100> bytes{};
    const auto got = ::read(descriptor_, bytes.data(), bytes.size());
    return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0))};
  }

 private:
  int descriptor_;
};

/// A state file in a folder that refuses what an ordinary user does to it.
struct Refusal {
  const char* name;
  int folder_mode;
  int file_mode;
  bool limited;        ///< files may grow to 10 bytes
  int error;           ///< number of the error of a write
  const char* stored;  ///< PortCom that a start finds
};
constexpr Refusal refusals[]{
    {"limit of file sizes", 0755, 0644, true, error_number::disk_full, "4"},
    {"read-only folder", 0555, 0644, false, error_number::permission_denied, "4"},
    {"read-only file", 0755, 0444, false, error_number::permission_denied, "4"},
    {"folder that can't be entered", 0, 0644, false, error_number::permission_denied, "1"},
};

/// What a child that has no more rights than the row says makes of some work.
int as_user(const Refusal& row, const std::function<int()>& work) {
  return result_of(start_child([&] {
    const rlimit limit{10, 10};
    ::signal(SIGXFSZ, SIG_IGN);
    if (row.limited && ::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 255;
    if (::geteuid() == 0 && ::setuid(nobody) != 0) return 255;
    return work();
  }));
}

TEST(FileFaults, a_write_that_is_refused_leaves_all_as_it_was) {
  for (const Refusal& row : refusals) {
    SCOPED_TRACE(row.name);
    const TemporaryFolder outer;
    fs::permissions(outer.path(), fs::perms{0755});
    const fs::path file = outer.write("state/Orvex.INI", old_text);
    const fs::path folder = file.parent_path();
    fs::permissions(file, static_cast<fs::perms>(row.file_mode));
    fs::permissions(folder, static_cast<fs::perms>(row.folder_mode));
    for (const fs::path& path : {file, folder}) {
      ASSERT_TRUE(::geteuid() != 0 || ::chown(path.c_str(), nobody, nobody) == 0);
    }
    EXPECT_EQ(
        as_user(row,
                [&] { return error_of(platform::replace_file(file, "longer than that")).number; }),
        row.error);
    const auto start_and_save = [&] {
      PortState state;
      Load_Ini(state, folder);
      const bool saved = save_ini(state, 2, "9600,N,8,1");
      return saved ? 254 : state.PortCom == row.stored ? 0 : 253;
    };
    EXPECT_EQ(as_user(row, start_and_save), 0);
    if (::geteuid() != 0) fs::permissions(folder, fs::perms{0755});
    EXPECT_EQ(unfinished(folder), 0);
    EXPECT_EQ(content(file), old_text);
  }
}

TEST(FileFaults, what_stands_in_place_of_the_state_file_gives_way_and_its_target_stays) {
  for (const char* target : {"target", "good", "missing", ".", "/dev/null", "Orvex.INI", "pipe"}) {
    SCOPED_TRACE(target);
    const TemporaryFolder folder;
    folder.write("target", "PORTCOM=9;");
    folder.write("good", "PORTCOM=2;");
    const bool pipe = target == std::string_view("pipe");
    if (pipe) {
      ASSERT_EQ(::mkfifo((folder / ini_name).c_str(), 0666), 0);
    } else {
      fs::create_symlink(target, folder / ini_name);
    }
    const Reader reader(pipe ? folder / ini_name : fs::path("/dev/null"));
    PortState state;
    Load_Ini(state, folder.path());
    EXPECT_EQ(state.PortCom, "1");
    EXPECT_TRUE(save_ini(state, 3, "9600,N,8,1"));
    const auto status = fs::symlink_status(folder / ini_name);
    EXPECT_TRUE(fs::is_regular_file(status));
    EXPECT_EQ(status.permissions(), fs::perms{0664}) << "the next user is in the same group";
    EXPECT_EQ(content(folder / "target"), "PORTCOM=9;");
    EXPECT_EQ(content(folder / "good"), "PORTCOM=2;");
    EXPECT_EQ(reader.read(), "");
    EXPECT_EQ(unfinished(folder.path()), 0);
  }
}

TEST(FileFaults, a_link_that_somebody_else_made_in_a_folder_of_all_is_not_written_through) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root makes files of several users";
  constexpr uid_t somebody = 1;
  const struct {
    uid_t owner;  ///< of the link
    int error;
  } table[]{{somebody, error_number::permission_denied}, {nobody, 0}, {0, 0}};
  for (const auto& row : table) {
    const TemporaryFolder outer;
    fs::permissions(outer.path(), fs::perms{0755});
    const fs::path own = outer.write("home/own", "old");
    const fs::path link = outer.write("shared/x", "").parent_path() / "link";
    fs::permissions(link.parent_path(), fs::perms{01777});
    fs::create_symlink(own, link);
    for (const fs::path& path : {own.parent_path(), own}) {
      ASSERT_EQ(::chown(path.c_str(), nobody, nobody), 0);
    }
    ASSERT_EQ(::lchown(link.c_str(), row.owner, row.owner), 0);
    const Refusal no_limit{"", 0, 0, false, 0, ""};
    const auto save = [&] {
      const auto error = platform::replace_file(link, "new");
      return error ? error_of(error).number : 0;
    };
    EXPECT_EQ(as_user(no_limit, save), row.error) << row.owner;
    EXPECT_EQ(content(own), row.error == 0 ? "new" : "old");
  }
}

}  // namespace
}  // namespace orvex::testing
