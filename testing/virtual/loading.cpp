#include "testing/virtual/loading.h"

#include <memory>
#include <random>

#include "transfer/image_source.h"
#include "transfer/zmodem_sender.h"

namespace orvex::testing {
namespace {

class ScriptedLoader final : public simulator::Loader {
 public:
  ScriptedLoader(Loading& loading, Time now) : loading_(loading), wake_(now) {
    loading_.receiver = ScriptedReceiver(loading_.script);
    loading_.receiver.hear("", now);
  }

  void hear(std::string_view bytes, Time now) override {
    loading_.receiver.hear(bytes, now);
    wake_ = now;
    loading_.taken();
  }
  std::string say(Time now) override {
    auto bytes = loading_.receiver.speak(now);
    // What it says without being spoken to may come up to a second late.
    wake_ = bytes.empty() ? now + std::chrono::seconds(1) : now;
    return bytes;
  }
  std::optional<Time> due() const override {
    return finished() ? std::nullopt : std::optional(wake_);
  }
  bool finished() const override { return loading_.receiver.over || loading_.receiver.cancelled; }
  std::optional<std::string> file() const override {
    return loading_.receiver.over ? std::optional(loading_.receiver.file) : std::nullopt;
  }

 private:
  Loading& loading_;
  Time wake_;
};

}  // namespace

EngineFactory Loading::sender() {
  return [this](const std::filesystem::path& path, int rate, Time now) {
    if (refusal) throw RunTimeError(*refusal);
    auto source = open_image(path);
    ++started;
    return std::make_unique<ZmodemSender>(std::move(source), now, static_cast<std::uint32_t>(rate));
  };
}

simulator::MakeLoader Loading::loader() {
  return [this](Time now) { return std::make_unique<ScriptedLoader>(*this, now); };
}

std::string random_image(std::size_t size, std::uint32_t seed, const std::string& revision) {
  std::mt19937 random(seed);
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random() & 0xFF);
  bytes.replace(48, 8, "00001234").replace(64, 4, "BEEF");
  return bytes.replace(80, 7, revision).replace(96, 11, "01 Jan 2026");
}

}  // namespace orvex::testing
