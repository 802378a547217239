#include "simulator/scanner.h"

#include <gtest/gtest.h>

#include "simulator/line_damage.h"

namespace orvex::simulator {
namespace {

using namespace std::chrono_literals;

/// What a scanner at 9600 says to some bytes, and when: "5:\x06 10:text".
std::string answers(Scanner& scanner, std::string_view bytes, int rate = 9600) {
  scanner.hear(bytes, rate, 0ms);
  std::string text;
  while (const auto due = scanner.due()) {
    const auto said = scanner.say(*due);
    if (!said.empty()) text += std::to_string(*due / 1ms) + ":" + said + " ";
  }
  return text;
}

TEST(Scanner, takes_frames_whole_or_refuses_them_whole) {
  const struct {
    const char* text;
    bool taken;
  } table[]{{"<SPVOLU=LOW>", true},
            {"<SPVOLU=LOW><PREFIX=a>b><RSDELY=007>", true},
            {"<PREFIX=<x>><SPVOLU=LOW>", true},
            {"<SPVOLU=LOW><CD39EN=2>", false},
            {"<SPVOLU=LOW>x", false},
            {"<SPVOLU=LOW><NOSUCH=1>", false},
            {"<SPVOLU=LOW", false},
            {"<SPVOLU=LOW HIGH>", false},
            {"<RSDELY=abc><SPVOLU=LOW>", false},
            {"", false},
            {"<SPVOLU:>", false}};
  for (const auto& row : table) {
    Scanner scanner;
    const std::string frame = "\x01" + std::string(row.text) + "\x04";
    EXPECT_EQ(answers(scanner, frame), row.taken ? "5:\x06 " : "5:\x15 ") << row.text;
    EXPECT_EQ(scanner.parameters["SPVOLU"], row.taken ? "LOW" : "HIGH") << row.text;
    EXPECT_EQ(scanner.parameters == Parameters(), !row.taken) << row.text;
  }
}

TEST(Scanner, is_deaf_at_a_wrong_rate_and_moves_behind_its_ack) {
  Scanner scanner;
  EXPECT_EQ(answers(scanner, "\x01<TXPING:>\x04", 19200), "");
  scanner.hear("\x01<RSBAUD=1200>\x04", 9600, 0ms);
  EXPECT_EQ(scanner.rate(), 9600);
  EXPECT_EQ(scanner.say(5ms), "\x06");
  EXPECT_EQ(scanner.rate(), 1200);
  EXPECT_EQ(answers(scanner, "\x01<TXPI", 1200), "");
  EXPECT_EQ(answers(scanner, "NG:>\x04", 1200), "5:\x06 ");
  EXPECT_EQ(answers(scanner, "\x01<FACDEF=1>\x04", 1200), "5:\x06 ");
  EXPECT_EQ(scanner.rate(), 9600);
}

TEST(Scanner, faults_do_what_they_say) {
  const std::string query = "\x01<HARDRV:>\x04";
  const struct {
    const char* fault;
    std::string first;
    std::string second;
  } table[]{{"silent=1", "", "5:\x06 10:2.0B\r\n "},
            {"only=<FINGER", "5:\x06 10:2.0B\r\n ", "5:\x06 10:2.0B\r\n "},
            {"nak=1", "5:\x15 ", "5:\x06 10:2.0B\r\n "},
            {"lost-ack=1", "", "5:\x06 10:2.0B\r\n "},
            {"late-ack=700", "705:\x06 710:2.0B\r\n ", "705:\x06 710:2.0B\r\n "},
            {"cut-reply=3", "5:\x06 10:2.0 ", "5:\x06 10:2.0 "},
            {"no-crlf", "5:\x06 10:2.0B ", "5:\x06 10:2.0B "},
            {"padded-reply=10", "5:\x06 10:2.0B----\r\n ", "5:\x06 10:2.0B----\r\n "},
            {"unplug-after=2", "5:\x06 10:2.0B\r\n ", ""}};
  for (const auto& row : table) {
    Scanner scanner;
    ASSERT_TRUE(set_fault(scanner.faults, row.fault)) << row.fault;
    EXPECT_EQ(answers(scanner, query), row.first) << row.fault;
    EXPECT_EQ(answers(scanner, query), row.second) << row.fault;
  }
  Faults faults;
  for (const char* text : {"", "silence", "silent=", "silent=x", "silent=-1"}) {
    EXPECT_FALSE(set_fault(faults, text)) << text;
  }
  Scanner deaf;
  ASSERT_TRUE(set_fault(deaf.faults, "ignored=1"));
  for (const char* volume : {"HIGH", "LOW"}) {
    EXPECT_EQ(answers(deaf, "\x01<SPVOLU=LOW>\x04"), "5:\x06 ");
    EXPECT_EQ(deaf.parameters["SPVOLU"], volume);
  }
  faults.frame_without_end = true;
  Scanner scanner;
  scanner.faults = faults;
  EXPECT_TRUE(answers(scanner, "\x01<SETPAR:>\x04").ends_with("\x04\x01<SERIEN=0>\r\n "));
}

TEST(LineDamage, hits_where_it_is_told_however_the_bytes_are_cut) {
  const std::string clean = "0123456789";
  const struct {
    LineDamage damage;
    const char* result;
  } table[]{{LineDamage().flip(Where::every(4), 0x40), "012s456w89"},
            {LineDamage().drop(Where::at({0, 9})), "12345678"},
            {LineDamage().delay(Where::at({5}), 1s), "012345~6789"},
            {LineDamage().drop(Where::every(2)).duplicate(Where::at({0})), "002468"}};
  for (const auto& row : table) {
    for (const std::size_t piece : {1U, 10U}) {
      LineDamage damage = row.damage;
      std::string text;
      for (std::size_t at = 0; at < clean.size(); at += piece) {
        for (const auto& arrival : damage.pass(std::string_view(clean).substr(at, piece))) {
          text += arrival.byte;
          if (arrival.late > 0ms) text += '~';
        }
      }
      EXPECT_EQ(text, row.result);
    }
  }
}

}  // namespace
}  // namespace orvex::simulator
