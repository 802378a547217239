// Commands on the virtual clock: what a scanner leaves out, and the courses that take long.
#include <gtest/gtest.h>

#include "console/progress_line.h"
#include "console/trace.h"
#include "tests/console/virtual_console.h"

namespace orvex::testing {
namespace {

TEST(Commands, what_a_scanner_does_not_report_is_null_and_goes_into_no_frame) {
  CommandDesk desk;
  desk.scanner.parameters.apply("<RSBAUD=19200><RSPRTY=EVEN>");
  desk.scanner.faults = {.only = "<SETPAR:>",
                         .other_reply =
                             "\x01<SPVOLU=HIGH>\x04\x01<CD39EN=2>\x04"
                             "\x01<RSDELY=005>\x04\r\n"};
  const std::vector<std::string> at{"--settings", "19200,E,8,1"};
  const auto with = [&](std::vector<std::string> words) {
    words.insert(words.end(), at.begin(), at.end());
    return desk.run(words);
  };
  EXPECT_NE(with({"show", "CD39EN", "RSDELY", "RSBAUD"})
                .find(R"("setup":{"CD39EN":null,"RSBAUD":null,"RSDELY":"005"})"),
            std::string::npos);
  EXPECT_TRUE(
      with({"save", "file"}).starts_with("5: Not saved: the scanner doesn't report RSBAUD"));
  desk.line.frames.clear();
  // The reply stays what it is, and so the scanner seems to have taken nothing.
  EXPECT_EQ(with({"set", "SPVOLU=LOW", "MAGRAW=1"}),
            "5: The scanner did not take SPVOLU (HIGH in place of LOW), MAGRAW (- in place of 1)");
  EXPECT_EQ(desk.line.frames.at(2).text, "<RSDELY=005><SPVOLU=LOW><MAGRAW=1>");
  EXPECT_EQ(desk.line.settings, (LineSettings{19200, Parity::even, 8, 1}));
}

TEST(Commands, a_delay_is_compared_as_a_number) {
  const struct {
    const char* scanner;
    const char* wanted;
    const char* changed;
  } table[]{{"7", "007", "[]"},
            {"000", "0", "[]"},
            {"", "", "[]"},
            {"007", "70", R"([{"after":"070","before":"007","name":"RSDELY"}])"},
            {"", "0", R"([{"after":"000","before":"","name":"RSDELY"}])"}};
  for (const auto& row : table) {
    CommandDesk desk;
    desk.scanner.parameters.apply("<RSDELY=" + std::string(row.scanner) + ">");
    const auto result = desk.run({"set", "RSDELY=" + std::string(row.wanted)});
    EXPECT_NE(result.find("\"changed\":" + std::string(row.changed)), std::string::npos) << result;
    const bool sent = desk.line.texts().find("<RSBAUD=") != std::string::npos;
    EXPECT_EQ(sent, row.changed != std::string("[]"));
  }
}

TEST(Commands, a_search_takes_its_parity_and_the_port_from_the_command_line) {
  CommandDesk desk;
  desk.line.scanner_port = 2;
  desk.scanner.parameters.apply("<RSPRTY=ODD>");
  EXPECT_EQ(desk.run({"find", "--port", "2"}).substr(0, 2), "3:");
  EXPECT_EQ(desk.run({"find", "--port", "2", "--parity", "o"}),
            R"({"device":")" + desk.line.device_path(2) + R"(","port":2,"settings":"9600,O,8,1"})");
  EXPECT_EQ(desk.run({"find", "--port", "3"}).substr(0, 2), "4:");
}

TEST(Commands, a_factory_default_follows_the_scanner_and_says_what_changed) {
  CommandDesk desk;
  desk.scanner.parameters.apply("<RSBAUD=115200><SPVOLU=OFF>");
  desk.console.answer = true;
  EXPECT_EQ(desk.run({"factory", "--port", "1"}),
            R"({"changed":[{"after":"9600","before":"115200","name":"RSBAUD"},)"
            R"({"after":"HIGH","before":"OFF","name":"SPVOLU"}],"device":")" +
                desk.line.device_path(1) + R"(","port":1,"settings":"9600,N,8,1"})");
}

/// A load, and what befalls it. Times are those of the whole command.
struct LoadRow {
  const char* name;
  void (*befall)(CommandDesk&);
  const char* result;
  int from_s;
  int to_s;
};

void restart_at(CommandDesk& desk, int seconds) {
  desk.scanner.options.restarts_itself = false;
  desk.windows.at(std::chrono::seconds(seconds), [&desk] { desk.scanner.restart(); });
}

constexpr LoadRow loads[]{
    {"all well", [](CommandDesk&) {}, R"({"after":"4.00   ","before":"3.22","bytes":2000)", 8, 12},
    {"restarted late", [](CommandDesk& desk) { restart_at(desk, 60); }, R"({"after":"4.00   ")", 60,
     66},
    {"the scanner stays at its parity",
     [](CommandDesk& desk) {
       desk.scanner.parameters.apply("<RSPRTY=EVEN>");
       desk.settings = "9600,E,8,1";
     },
     R"({"after":"4.00   ")", 8, 12},
    {"the image goes under way",
     [](CommandDesk& desk) {
       desk.windows.at(1s, [&desk] { std::filesystem::remove(desk.folder.path() / "image.bin"); });
     },
     R"({"after":"4.00   ","before":"3.22","bytes":2000)", 8, 12},
    {"never restarted", [](CommandDesk& desk) { desk.scanner.options.restarts_itself = false; },
     "3: ", 120, 133},
    {"the port goes with the power",
     [](CommandDesk& desk) {
       restart_at(desk, 40);
       desk.windows.at(12s, [&desk] { desk.line.unplug(); });
       desk.windows.at(50s, [&desk] { desk.line.plug(); });
     },
     R"({"after":"4.00   ")", 50, 56},
    {"the old revision to the end",
     [](CommandDesk& desk) {
       desk.scanner.faults = {.only = "<APP1RV:>", .other_reply = "3.22\r\n"};
     },
     "5: The scanner still says revision 3.22", 120, 135},
    {"unplugged under way",
     [](CommandDesk& desk) { desk.windows.at(1s, [&desk] { desk.line.unplug(); }); },
     "7: The transfer failed: the line is gone", 1, 10},
};

TEST(Commands, a_load_ends_with_the_scanner_back_or_says_what_became_of_it) {
  for (const LoadRow& row : loads) {
    SCOPED_TRACE(row.name);
    CommandDesk desk;
    row.befall(desk);
    const auto image = desk.folder.write("image.bin", random_image(2000, 1));
    const auto result = desk.run({"load", image.string(), "--settings", desk.settings});
    EXPECT_TRUE(result.starts_with(row.result)) << result;
    EXPECT_GE(desk.now(), std::chrono::seconds(row.from_s));
    EXPECT_LE(desk.now(), std::chrono::seconds(row.to_s));
    EXPECT_FALSE(desk.line.is_open());
  }
}

TEST(Trace, shows_each_byte_so_that_it_can_be_told) {
  const struct {
    std::string bytes;
    const char* shown;
  } table[]{{"\x01<HARDRV:>\x04", R"(SOH "<HARDRV:>" EOT)"},
            {"2.0B\r\n", R"("2.0B" CR LF)"},
            {"a\"\\[CR]\r", R"("a\"\\[CR]" CR)"},
            {"\x1B[m\x7F\x9B\xE9", R"(ESC "[m" DEL "\x9Bé")"}};
  for (const auto& row : table) EXPECT_EQ(traced_text(row.bytes), row.shown);
  EXPECT_EQ(traced_hex(std::string("\x00\x18\xFF", 3)), "00 18 FF");
}

TEST(Escape, leaves_no_control_character_in_json_or_on_a_terminal) {
  const QString text = QString::fromLatin1("a\x1B\x7F\x9B\n\\\xE9");
  EXPECT_EQ(printable(text).toStdString(), "a\\x1B\\x7F\\x9B\\x0A\\\\é");
  EXPECT_EQ(json_of({{"a", text}}).toStdString(), "{\"a\":\"a\\u001b\\u007f\\u009b\\n\\\\é\"}\n");
}

TEST(ProgressLine, counts_its_rate_anew_for_each_transfer_and_is_cleared_once) {
  ProgressLine line;
  const std::string clear = "\r\x1B[K";
  const auto numbers = [&](double done, Time now) {
    const auto text = line.draw(done, 1000, now);
    return text.empty() ? text : text.substr(text.find("] ") + 2);
  };
  EXPECT_EQ(line.draw(0, 0, 0s), "");
  for (const Time start : {Time(1s), Time(60s)}) {
    EXPECT_EQ(numbers(0, start), "  0 %  0 bytes/s\x1B[K");
    EXPECT_EQ(numbers(10, start + 99ms), "");
    EXPECT_EQ(numbers(250, start + 500ms), " 25 %  500 bytes/s\x1B[K");
    EXPECT_EQ(numbers(1000, start + 501ms), "100 %  1996 bytes/s\x1B[K");
    EXPECT_EQ(line.draw(0, 0, start + 502ms), clear);
    EXPECT_EQ(line.draw(0, 0, start + 503ms), "");
  }
}

}  // namespace
}  // namespace orvex::testing
