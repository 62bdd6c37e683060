#include "tests/contracts/Desktop.h"

namespace orvo {
namespace {

class FakeSubject final : public DesktopSubject {
  public:
    explicit FakeSubject(fake::World& world) : world_(world) { printing = 0; }
    std::shared_ptr<IDesktop> Desktop() override { return world_.MakePlatform().desktop; }
    void Plan(const std::vector<Act>& acts) override {
        world_.reportClicks.clear();
        for (const Act act : acts) {
            const auto button = static_cast<Integer>(act);
            if (act <= Act::Leave)
                world_.answer = [=](const FailureView&) { return button; };
            else if (act <= Act::Web)
                world_.reportClicks.push_back(static_cast<Integer>(button - 3));
            else
                world_.messageAnswer = act == Act::Yes ? MessageAnswer::Yes : MessageAnswer::No;
        }
    }
    std::string Shown() const override {
        std::string all;
        for (const fake::Message& message : world_.messages) all += message.text + "\n";
        for (const RuntimeError& failure : world_.eventFailures)
            all += Told(std::to_string(failure.Number()), failure.Description()) + "\n";
        for (const std::string& address : world_.opened) all += address + "\n";
        return all;
    }
    bool ClipboardHolds(const std::string& text) const override { return world_.clipboard == text; }
    std::vector<std::pair<std::function<std::shared_ptr<IDesktop>()>, bool>> WithoutUser() override {
        Plan({Act::No, Act::Next});
        return {{[this] { return Desktop(); }, true}};
    }

  private:
    fake::World& world_;
};

}  // namespace

NamedDesktop FakeDesktop() {
    return {"Fake", [](fake::World& world) -> std::unique_ptr<DesktopSubject> {
                return std::make_unique<FakeSubject>(world);
            }};
}

}  // namespace orvo
