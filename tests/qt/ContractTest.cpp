// The window keeps what every desktop promises.
#include "tests/contracts/DesktopContract.h"
#include "tests/qt/WindowFixture.h"

namespace orvo {
namespace {

class User final : public qt::WindowTest {
  public:
    std::shared_ptr<IDesktop> Window() const { return desktop; }
    void Plan(const std::vector<Integer>& reports, Integer choice) {
        for (const Integer report : reports) Add("cmdProtocol", report);
        Add("cmdContinue", choice);
    }
    std::string Told() {
        std::string told;
        for (const auto& box : std::exchange(boxes, {})) told += box.text;
        return told;
    }

  private:
    void TestBody() override {}
    void Add(const std::string& button, Integer index) {
        steps.push_back([name = button + "(" + std::to_string(index) + ")"](QDialog& window) {
            QTest::mouseClick(&Widget(window, name.c_str()), Qt::LeftButton);
        });
    }
};

DesktopSubject WindowDesktop() {
    const auto user = std::make_shared<User>();
    return {user->Window(),
            [user](const std::vector<Integer>& reports, Integer choice) { user->Plan(reports, choice); },
            [user] { return user->Told(); },
            {}};
}

INSTANTIATE_TEST_SUITE_P(Qt, DesktopContract, testing::Values(&WindowDesktop));

}  // namespace
}  // namespace orvo
