#include "qt/web_address.h"

#include <algorithm>

#include "base/number.h"
#include "loop/text.h"

namespace orvex {
namespace {

bool is_web(const QUrl& url) {
  return (url.scheme() == "http" || url.scheme() == "https") && !url.host().isEmpty();
}

/// "host:8080" reads as a scheme followed by a path that begins with a digit.
bool is_host_and_port(const QUrl& url) {
  return url.host().isEmpty() && !url.path().isEmpty() && url.path().front().isDigit();
}

}  // namespace

std::optional<QUrl> web_address(std::string_view text) {
  while (!text.empty() && text.back() == '\0') text.remove_suffix(1);
  text = trimmed(text);
  const bool plain =
      std::ranges::all_of(text, [](unsigned char c) { return c > 0x20 && c < 0x7F; });
  if (text.empty() || !plain) return std::nullopt;
  QUrl url(to_qt(text));
  if (url.scheme().isEmpty() || is_host_and_port(url)) url = QUrl("http://" + to_qt(text));
  if (!url.isValid() || !is_web(url)) return std::nullopt;
  return url;
}

}  // namespace orvex
