#include "transfer/zmodem_codec.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "transfer/zmodem_course.h"
#include "transfer/zmodem_crc.h"
#include "transfer/zmodem_parser.h"

namespace orvex::testing {
namespace {

using std::string;

// Headers as lrzsz 0.12.21 prints them.
TEST(ZmodemCodec, headers_are_those_of_an_independent_program) {
  EXPECT_EQ(zmodem_hex_header({ZmodemFrame::zrqinit, 0}), "**\030B00000000000000\r\n\x11");
  EXPECT_EQ(zmodem_hex_header({ZmodemFrame::zfin, 0}), "**\030B0800000000022d\r\n");
  string wire;
  ZmodemEscape escape;
  append_binary_header({ZmodemFrame::zfile, 0x01000000}, ZmodemCheck::crc32, escape, wire);
  append_subpacket(string("f.bin\0"
                          "3000 15300673040 100644 0 1 3000\0",
                          39),
                   ZmodemEnd::wait, ZmodemCheck::crc32, escape, wire);
  EXPECT_EQ(wire, string("*\030C\x04\0\0\0\x01Ka\xa5"
                         "Df.bin\0"
                         "3000 15300673040 100644 0 1 3000\0"
                         "\x18k\x99\xce\x86\xf9",
                         57));
}

TEST(ZmodemCodec, the_checks_are_the_published_ones_in_any_cut) {
  EXPECT_EQ(zmodem_crc16("123456789"), 0x31C3);
  EXPECT_EQ(zmodem_crc32("123456789"), 0xCBF43926);
  const string data = noise(1000);
  for (const std::size_t cut : {1U, 7U, 8U, 501U}) {
    const std::string_view view(data);
    EXPECT_EQ(zmodem_crc32(view.substr(cut), zmodem_crc32(view.substr(0, cut))),
              zmodem_crc32(view));
  }
}

TEST(ZmodemCodec, escapes_what_flow_control_and_terminals_would_eat) {
  const struct {
    string raw, wire;
    bool controls;
  } cases[] = {
      {"\x10\x11\x13\x18\x90\x91\x93", "\x18P\x18Q\x18S\x18X\x18\xD0\x18\xD1\x18\xD3", false},
      {"\x12\x14\x0D\x8D\x7F\xFF", "\x12\x14\x0D\x8D\x7F\xFF", false},
      {"@\x0D@\x8D\xC0\x0D\xC0\x8D", "@\x18M@\x18\xCD\xC0\x18M\xC0\x18\xCD", false},
      {"\x01\x1F\x80\x9F\x0D\xA0 ", "\030A\x18_\x18\xC0\x18\xDF\x18M\xA0 ", true},
  };
  for (const auto& c : cases) {
    ZmodemEscape escape(c.controls);
    string wire;
    for (const char byte : c.raw) escape.append({&byte, 1}, wire);  // it remembers across calls
    EXPECT_EQ(wire, c.wire);
  }
}

TEST(ZmodemParser, finds_headers_of_each_kind_in_any_surroundings) {
  string in_crc16, in_crc32;
  ZmodemEscape escape;
  append_binary_header({ZmodemFrame::zack, 0x13181110}, ZmodemCheck::crc16, escape, in_crc16);
  append_binary_header({ZmodemFrame::zack, 0x13181110}, ZmodemCheck::crc32, escape, in_crc32);
  const ZmodemHeader ready{ZmodemFrame::zrinit, 0x23000000};
  const ZmodemHeader place{ZmodemFrame::zack, 0x13181110};
  const struct {
    string wire;
    std::vector<ZmodemHeader> headers;
  } cases[] = {
      {"**\030B0100000023be50\r\x8a\x11", {ready}},
      {"**\030B0100000023BE50\r\n", {ready}},
      {"\021*junk***\030B01000\023\02100023be50", {ready}},
      {"**\030B0100000023be50**\030B0100000023be50", {ready, ready}},
      {"**\030B010000**\030B0100000023be50\r\n", {ready}},
      {"**\030B0100000022be50\r\n**\030B01000000", {}},
      {"*\030A\x01\x18**\030B0100000023be50", {ready}},
      {"x" + in_crc16 + in_crc32, {place, place}},
  };
  for (const auto& c : cases) {
    std::vector<ZmodemHeader> found;
    ZmodemParser parser;
    for (const char byte : c.wire) {
      if (parser.feed(byte) == ZmodemParser::Event::header) found.push_back(parser.header());
    }
    EXPECT_EQ(found, c.headers) << c.wire;
  }
}

}  // namespace
}  // namespace orvex::testing
