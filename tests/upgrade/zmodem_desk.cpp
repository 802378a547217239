#include "upgrade/zmodem_desk.h"

#include <memory>
#include <random>

#include "upgrade/zmodem_sender.h"

namespace orvex::test {
namespace {

class ScriptedLoader final : public simulator::Loader {
 public:
  ScriptedLoader(ZmodemDesk& desk, Time now) : desk_(desk), wake_(now) {
    desk_.receiver = ScriptedReceiver(desk_.script);
    desk_.receiver.hear("", now);
  }

  void hear(std::string_view bytes, Time now) override {
    desk_.receiver.hear(bytes, now);
    wake_ = now;
    desk_.taken();
  }
  std::string say(Time now) override {
    auto bytes = desk_.receiver.speak(now);
    // What it says without being spoken to may come up to a second late.
    wake_ = bytes.empty() ? now + 1s : now;
    return bytes;
  }
  std::optional<Time> due() const override {
    return finished() ? std::nullopt : std::optional(wake_);
  }
  bool finished() const override { return desk_.receiver.over || desk_.receiver.cancelled; }
  std::optional<std::string> file() const override {
    return desk_.receiver.over ? std::optional(desk_.receiver.file) : std::nullopt;
  }

 private:
  ZmodemDesk& desk_;
  Time wake_;
};

EngineFactory zmodem_engine() {
  return [](const std::filesystem::path& path, int rate, Time now) {
    return std::make_unique<ZmodemSender>(open_image(path), now, static_cast<std::uint32_t>(rate));
  };
}

}  // namespace

ZmodemDesk::ZmodemDesk()
    : Desk(zmodem_engine(),
           [this](Time now) { return std::make_unique<ScriptedLoader>(*this, now); }) {
  scanner.options.restarts_itself = true;
}

void ZmodemDesk::load(const std::string& image, bool fast) {
  form1().mnuload[5].Checked = fast;
  // Its time and rights go along in the offer, and shift all behind them.
  const auto path = folder.write("image.bin", image);
  const std::chrono::sys_seconds changed(1700000000s);
  std::filesystem::last_write_time(path, std::chrono::file_clock::from_sys(changed));
  std::filesystem::permissions(path, std::filesystem::perms{0644});
  windows.files = {path};
  windows.answers.push_front({Answer::yes});
  press(&Program::mnuload_Click, 2);
}

std::string random_image(std::size_t size, std::uint32_t seed, const std::string& revision) {
  std::mt19937 random(seed);
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random() & 0xFF);
  bytes.replace(48, 8, "00001234").replace(64, 4, "BEEF");
  return bytes.replace(80, 7, revision).replace(96, 11, "01 Jan 2026");
}

}  // namespace orvex::test
