#include "qt/web_address.h"

#include <gtest/gtest.h>

#include "loop/text.h"

namespace orvex::testing {
namespace {

TEST(WebAddress, is_http_or_https_and_nothing_else) {
  const struct {
    std::string text;
    const char* address;
  } table[]{{"www.example.org\r\n", "http://www.example.org"},
            {" https://a.example/x?y=1#z ", "https://a.example/x?y=1#z"},
            {"HTTP://a.example", "http://a.example"},
            {"a.example:8080/x", "http://a.example:8080/x"},
            {"www.a-long-addres", "http://www.a-long-addres"},
            {std::string("a.example\0\0", 11), "http://a.example"},
            {"file:///etc/passwd", "(none)"},
            {"//etc/passwd", "(none)"},
            {"javascript:alert", "(none)"},
            {"mailto:a@b", "(none)"},
            {"a b.example", "(none)"},
            {"a\x01.example", "(none)"},
            {"a\xE9.example", "(none)"},
            {std::string("a\0b", 3), "(none)"},
            {"\r\n", "(none)"},
            {"", "(none)"}};
  for (const auto& row : table) {
    const auto address = web_address(row.text);
    EXPECT_EQ(address ? from_qt(address->toString(QUrl::FullyEncoded)) : "(none)", row.address)
        << row.text;
  }
}

}  // namespace
}  // namespace orvex::testing
