#include "tests/contracts/DesktopContract.h"

namespace orvo {
namespace {

class FakeSubject {
  public:
    explicit FakeSubject(fake::World& world) : world_(world) {}
    std::shared_ptr<IDesktop> Desktop() { return world_.MakePlatform().desktop; }
    void Plan(const std::vector<Act>& acts) {
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
    std::string Shown() const {
        std::string all;
        for (const fake::Message& message : world_.messages) all += message.text + "\n";
        for (const RuntimeError& failure : world_.eventFailures)
            all += Told(std::to_string(failure.Number()), failure.Description()) + "\n";
        for (const std::string& address : world_.opened) all += address + "\n";
        return all;
    }
    bool ClipboardHolds(const std::string& text) const { return world_.clipboard == text; }
    static std::string Told(const std::string& number, const std::string& text) {
        return number + " (" + text + ")";
    }
    std::vector<Unattended> WithoutUser() {
        Plan({Act::No, Act::Next});
        return {{[this] { return Desktop(); }, true}};
    }
    static constexpr Long kPrinting = 0;

  private:
    fake::World& world_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, DesktopContract, FakeSubject);
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, AttendedDesktop, FakeSubject);

}  // namespace
}  // namespace orvo
