#include "setup/scanner_setup.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <utility>

#include "base/run_time_error.h"
#include "parameter_table.h"
#include "setup/apply.h"
#include "simulator/parameters.h"

namespace orvex::testing {
namespace {

std::string joined(const ScannerSetup& setup) {
  const auto tags = Setup_Tag_List(setup);
  return std::accumulate(tags.begin(), tags.end(), std::string{});
}

std::string frame(std::string_view tag) {
  return "\x01" + std::string(tag) + "\x04";
}

TEST(ScannerSetup, every_parameter_has_its_place_its_initial_value_and_no_value_but_its_own) {
  ASSERT_EQ(parameter_table().size(), field_count);
  for (std::size_t i = 0; i < field_count; ++i) {
    const ListedParameter& row = parameter_table()[i];
    EXPECT_EQ(Setup_Tag_List(ScannerSetup())[i], row.tag(row.initial));
    EXPECT_EQ(parameters()[i].choices.size(), row.values.size()) << row.name;
    for (const ListedValue& value : row.values) {
      ScannerSetup sent;
      Apply_Tag(sent, row.tag(value.text));
      EXPECT_EQ(Setup_Tag_List(sent)[i], row.tag(value.text));
      simulator::Parameters scanner;
      ASSERT_TRUE(scanner.apply(joined(sent))) << row.name;
      EXPECT_EQ(scanner[row.name], value.text);
      ScannerSetup received;
      Apply_Stream(received, scanner.frames() + "\r\n", [] {});
      EXPECT_EQ(joined(received), joined(sent));
    }
  }
}

TEST(ScannerSetup, the_frames_of_a_page_lie_side_by_side_without_a_gap) {
  std::map<std::string, std::set<std::pair<int, int>>> cells;  // by tab and outer frame
  for (const FrameLayout& frame : frames()) {
    auto& page = cells[std::to_string(frame.tab) + std::string(frame.inside)];
    for (int row = frame.row; row < frame.row + frame.row_span; ++row) {
      EXPECT_TRUE(page.emplace(frame.column, row).second) << frame.name << " covers another";
    }
    const auto held = std::ranges::find(parameters(), frame.name, &Parameter::frame);
    if (held == parameters().end() || held->is_text()) continue;
    EXPECT_LE(frame.option_columns, static_cast<int>(held->choices.size())) << frame.name;
  }
  for (const auto& [page, taken] : cells) {
    const int top = page == "6Frame11" ? 1 : 0;  // below the frame's own options
    for (const auto& [column, row] : taken) {
      EXPECT_TRUE(row == top || taken.contains({column, row - 1})) << page;
      EXPECT_TRUE(column == 0 || taken.contains({column - 1, row})) << page;
    }
  }
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
  } table[]{{u"[STX]A[ETX]", "[STX]A[ETX]"}, {u"<>:>", "<>:>"},      {u"\u00E9\u00FF", "\xE9\xFF"},
            {u"\u20AC\u0100", "??"},         {u"\U0001F600x", "?x"}, {u"\xD83Dx", "?x"}};
  for (const auto& row : table) {
    ScannerSetup setup;
    setup.text(Field::PREFIX) = row.text;
    EXPECT_EQ(Setup_Tag_List(setup)[7], std::string("<PREFIX=") + row.bytes + ">");
  }
}

TEST(ApplyTag, takes_known_tags_whole_and_leaves_the_rest) {
  ScannerSetup before;
  for (const Field text : {Field::RSDELY, Field::PREFIX, Field::SUFFIX}) before.text(text) = u"old";
  for (const char* tag :
       {"<RSBAUD=300>", "<SPVOLU=LOUD>", "<CD39EN=2>", "<NOSUCH=1>", "<SERIAL:>", "", "<",
        "<cd39en=1>", "<CD39EN=1", "CD39EN=1", "<CD39EN=1> ", "<CD39EN=>", "<RSBAUD=9600",
        "<CD39EN:1>", "[CD39EN=1>", "<PREFIX:1>", " <CD39EN=1>"}) {
    ScannerSetup setup = before;
    Apply_Tag(setup, tag);
    EXPECT_EQ(setup, before) << tag;
  }
  const struct {
    const char* tag;
    const char* changed;  ///< tag of the list that is then there
  } table[]{{"<RSDELY=5>", "<RSDELY=005>"},
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
    ScannerSetup setup = before;
    Apply_Tag(setup, row.tag);
    EXPECT_NE(joined(setup).find(row.changed), std::string::npos) << row.tag;
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
            {on + "\x01<", true, true},
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
    EXPECT_EQ(received, opened) << row.text.substr(0, 40);
  }
}

TEST(ApplyStream, takes_a_too_long_reply_up_to_the_last_character_that_it_may_have) {
  for (const std::size_t size : {32767, 32768}) {
    ScannerSetup setup;
    std::string reply = frame("<CD39EN=1>") + frame("<SPPOWB=0>");
    reply.insert(frame("<CD39EN=1>").size(), size - reply.size(), ' ');
    if (size == 32767) reply += " ";
    EXPECT_THROW(apply_reply(setup, reply, [] {}), RunTimeError);
    EXPECT_EQ(setup.value(Field::CD39EN), "1");
    EXPECT_EQ(setup.value(Field::SPPOWB), size == 32767 ? "0" : "1");
  }
}

TEST(ApplyStream, passes_over_a_tag_that_is_longer_than_a_reply_may_be) {
  for (const std::size_t size : {32767, 32768}) {
    ScannerSetup setup;
    const std::string tag = "<PREFIX=" + std::string(size - 9, 'x') + ">";
    Apply_Stream(setup, frame("<SUFFIX=a>") + frame(tag) + frame("<CD39EN=1>"), [] {});
    EXPECT_EQ(setup.text(Field::PREFIX).size(), size == 32767 ? size - 9 : 0U);
    EXPECT_EQ(setup.value(Field::CD39EN), "1");
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
}  // namespace orvex::testing
