// The fake desktop and the terminal's.
#include <deque>
#include <sstream>

#include "platform/console/Desktop.h"
#include "platform/fake/World.h"
#include "tests/contracts/DesktopContract.h"

namespace orvo {
namespace {

DesktopSubject FakeDesktop() {
    const auto world = fake::World::Make();
    return {world->MakePlatform().desktop,
            [world](std::vector<Integer> reports, Integer choice) {
                world->reportClicks = std::move(reports);
                world->answer = [choice](const FailureView&) { return choice; };
            },
            [world] {
                std::string told;
                for (const RuntimeError& failure : world->eventFailures)
                    told += std::to_string(failure.Number()) + failure.Description();
                world->eventFailures.clear();
                return told;
            },
            {}};
}

/// The terminal is made anew for each policy: that one is an option of the start.
class Terminal final : public IDesktop {
  public:
    std::ostringstream out;
    std::deque<std::string> lines;

    Terminal() { Use(console::Policy::Ask); }
    void Use(console::Policy policy) {
        console::DesktopOptions options;
        options.out = &out;
        options.policy = policy;
        if (policy == console::Policy::Ask) {
            options.read = [this] {
                std::optional<std::string> line(lines.front());
                lines.pop_front();
                return line;
            };
        }
        made_ = std::make_unique<console::Desktop>(std::move(options));
    }
    MessageAnswer MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                             MessageButtons buttons) override {
        return made_->MessageBox(text, title, icon, buttons);
    }
    void ShowModal(IDialogEvents& events) override { made_->ShowModal(events); }
    void Beep() override {}
    void ResetPointer() override {}
    Box Screen() override { return made_->Screen(); }
    void Print(const std::vector<std::string>&) override {}
    void CopyToClipboard(const std::string&) override {}
    void Open(const std::string&) override {}

  private:
    std::unique_ptr<console::Desktop> made_;
};

DesktopSubject ConsoleDesktop() {
    const auto terminal = std::make_shared<Terminal>();
    return {terminal,
            [terminal](const std::vector<Integer>& reports, Integer choice) {
                for (const Integer report : reports) terminal->lines.push_back(std::to_string(report + 4));
                terminal->lines.push_back(std::to_string(choice + 1));
            },
            [terminal] {
                std::string told = terminal->out.str();
                terminal->out.str("");
                return told;
            },
            [terminal](dialog::Policy policy) { terminal->Use(policy); }};
}

INSTANTIATE_TEST_SUITE_P(Fake, DesktopContract, testing::Values(&FakeDesktop));
INSTANTIATE_TEST_SUITE_P(Console, DesktopContract, testing::Values(&ConsoleDesktop));
INSTANTIATE_TEST_SUITE_P(Console, UnaskedDesktopContract, testing::Values(&ConsoleDesktop));

}  // namespace
}  // namespace orvo
