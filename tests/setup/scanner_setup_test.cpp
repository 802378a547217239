#include "setup/scanner_setup.h"

#include <gtest/gtest.h>

#include <numeric>
#include <set>

#include "setup/apply.h"
#include "simulator/parameters.h"
#include "window/run_time_error.h"

namespace orvex::test {
namespace {

std::string joined(const ScannerSetup& setup) {
  const auto tags = Setup_Tag_List(setup);
  return std::accumulate(tags.begin(), tags.end(), std::string{});
}

std::string frame(std::string_view tag) {
  return "\x01" + std::string(tag) + "\x04";
}

TEST(ScannerSetup, starts_at_its_initial_values) {
  EXPECT_EQ(joined(ScannerSetup()),
            "<RSBAUD=9600><RSPRTY=NONE><RSBITS=8><RSSTOP=1><RSDELY=><RSCTSE=0><SPVOLU=MEDIUM>"
            "<PREFIX=><PRECID=0><SUFFIX=><SUFFCR=0><CD39EN=0><CD39SS=0><CD128E=0><PDF417=1>"
            "<MAG1EN=1><MAG2EN=1><MAG3EN=1><MAGLRC=0><MAGRAW=0><NOREAD=0><POWSET=0><SPPOWB=1>"
            "<SPPARA=1><SERIEN=0>");
}

TEST(ScannerSetup, every_value_of_every_choice_goes_to_a_scanner_and_comes_back) {
  std::set<int> options;
  std::size_t values = 0;
  for (const auto& row : parameters()) {
    for (std::size_t choice = 0; choice < row.choices.size(); ++choice, ++values) {
      ScannerSetup sent;
      sent.choose(row.field, choice);
      options.insert(row.choices[choice].option);
      simulator::Parameters scanner;
      ASSERT_TRUE(scanner.apply(joined(sent))) << row.name;
      EXPECT_EQ(scanner[row.name], row.choices[choice].value);
      ScannerSetup received;
      Apply_Stream(received, scanner.frames() + "\r\n", [] {});
      EXPECT_EQ(joined(received), joined(sent));
    }
  }
  EXPECT_EQ(values, 53U);
  EXPECT_EQ(options.size(), values) << "no option button stands for two values";
}

TEST(ScannerSetup, a_delay_that_is_a_number_has_three_digits_at_least) {
  const struct {
    const char16_t* text;
    const char* tag;
  } table[]{{u"", "<RSDELY=>"},       {u"0", "<RSDELY=000>"},    {u"7", "<RSDELY=007>"},
            {u"25", "<RSDELY=025>"},  {u"250", "<RSDELY=250>"},  {u"0007", "<RSDELY=007>"},
            {u" 5 ", "<RSDELY=005>"}, {u"1000", "<RSDELY=1000>"}};
  for (const auto& row : table) {
    ScannerSetup setup;
    setup.text(Field::RSDELY) = row.text;
    EXPECT_EQ(Setup_Tag_List(setup)[4], row.tag);
    EXPECT_EQ(setup.text(Field::RSDELY), row.text);
  }
  EXPECT_EQ(digits_only(u"1a3"), u"103");
  EXPECT_EQ(digits_only(u"/:\u0663\U0001F600"), u"00000");
}

TEST(ScannerSetup, texts_go_out_as_one_byte_a_character) {
  const struct {
    const char16_t* text;
    const char* bytes;
  } table[]{{u"[STX]A[ETX]", "[STX]A[ETX]"}, {u"<>:>", "<>:>"},
            {u"\u00E9\u00FF", "\xE9\xFF"},   {u"\u20AC", "?"},
            {u"\U0001F600x", "?x"},          {u"\xD83Dx", "?x"}};
  for (const auto& row : table) {
    ScannerSetup setup;
    setup.text(Field::PREFIX) = row.text;
    EXPECT_EQ(Setup_Tag_List(setup)[7], std::string("<PREFIX=") + row.bytes + ">");
  }
}

TEST(ApplyTag, takes_known_tags_whole_and_leaves_the_rest) {
  const struct {
    const char* tag;
    const char* changed;  ///< tag of the list that is then there; null where nothing changes
  } table[]{{"<RSBAUD=300>", nullptr},
            {"<SPVOLU=LOUD>", nullptr},
            {"<CD39EN=2>", nullptr},
            {"<NOSUCH=1>", nullptr},
            {"<SERIAL:>", nullptr},
            {"", nullptr},
            {"<", nullptr},
            {"<cd39en=1>", nullptr},
            {"<CD39EN=1", nullptr},
            {"CD39EN=1", nullptr},
            {"<CD39EN=1> ", nullptr},
            {"<CD39EN=>", nullptr},
            {"<RSBAUD=9600", nullptr},
            {"<CD39EN:1>", nullptr},
            {"<RSBAUD=19200>", "<RSBAUD=19200>"},
            {"<RSPRTY=EVEN>", "<RSPRTY=EVEN>"},
            {"<SPVOLU=OFF>", "<SPVOLU=OFF>"},
            {"<RSDELY=5>", "<RSDELY=005>"},
            {"<RSDELY=>", "<RSDELY=>"},
            {"<RSDELY=", "<RSDELY=>"},
            {"<PREFIX=>", "<PREFIX=>"},
            {"<PREFIX=", "<PREFIX=>"},
            {"<SUFFIX=", "<SUFFIX=>"},
            {"<PREFIX=abc", "<PREFIX=ab>"},
            {"<SUFFIX=a>b>", "<SUFFIX=a>b>"},
            {"<PREFIX=[DC1]>", "<PREFIX=[DC1]>"},
            {"<PREFIX=\xE9>", "<PREFIX=\xE9>"}};
  for (const auto& row : table) {
    ScannerSetup setup;
    for (const Field text : {Field::RSDELY, Field::PREFIX, Field::SUFFIX})
      setup.text(text) = u"old";
    const ScannerSetup before = setup;
    Apply_Tag(setup, row.tag);
    if (row.changed == nullptr) {
      EXPECT_EQ(setup, before) << row.tag;
    } else {
      EXPECT_NE(joined(setup).find(row.changed), std::string::npos) << row.tag;
    }
  }
}

TEST(ApplyStream, cuts_frames_out_of_any_text) {
  const std::string on = frame("<CD39EN=1>");
  const std::string off = frame("<CD39EN=0>");
  const struct {
    std::string text;
    bool enabled;
    bool overflow;  ///< as a scanner's reply
  } table[]{{on, true, false},
            {on + off + "\r\n", false, false},
            {"junk" + off + "\r\n\x04" + on + "more", true, false},
            {"<CD39EN=1>", false, false},
            {"", false, false},
            {"\x01", false, false},
            {on + "\x01", true, false},
            {on + "\x01<CD39EN=0>", true, true},
            {frame("") + on, true, false},
            {frame("\x01<CD39EN=1>"), false, false},
            {on + std::string(32767 - on.size(), ' '), true, false},
            {on + std::string(32768 - on.size(), ' '), true, true}};
  for (const auto& row : table) {
    ScannerSetup opened;
    Apply_Stream(opened, row.text, [] {});
    EXPECT_EQ(opened.choice(Field::CD39EN) == 1, row.enabled) << row.text.substr(0, 40);
    ScannerSetup received;
    bool overflow = false;
    try {
      apply_reply(received, row.text, [] {});
    } catch (const RunTimeError& error) {
      overflow = error.number == error_number::overflow;
    }
    EXPECT_EQ(overflow, row.overflow) << row.text.substr(0, 40);
    EXPECT_EQ(received == opened, row.text.size() <= 32767) << row.text.substr(0, 40);
  }
}

TEST(ApplyStream, what_the_user_changes_ahead_of_a_replys_frame_gives_way_to_its_tag) {
  ScannerSetup setup;
  int frames = 0;
  apply_reply(setup, frame("<CD39EN=1>") + frame("<CD39EN=0>") + frame("<PREFIX=a>"), [&] {
    if (++frames < 3) setup.choose(Field::CD39EN, 1);
    setup.text(Field::SUFFIX) = u"b";
  });
  EXPECT_EQ(frames, 3);
  EXPECT_EQ(setup.choice(Field::CD39EN), 0U);
  EXPECT_EQ(setup.text(Field::PREFIX), u"a");
  EXPECT_EQ(setup.text(Field::SUFFIX), u"b");
}

TEST(ApplyStream, keeps_the_window_alive_in_a_long_text) {
  std::string text;
  while (text.size() < 1'000'000) text += frame("<CD39EN=1>");
  ScannerSetup setup;
  int alive = 0;
  Apply_Stream(setup, text, [&] { ++alive; });
  EXPECT_GE(alive, 10);
}

}  // namespace
}  // namespace orvex::test
