#include "platform/windows/Platform.h"
#include "platform/windows/desktop/Desktop.h"
#include "platform/windows/system/WideText.h"
#include "tests/contracts/Desktop.h"

namespace orvo {
namespace {

/// Nobody looks at it.
class WindowsSubject final : public DesktopSubject {
  public:
    WindowsSubject() { attended = false; }
    ~WindowsSubject() override { ::SetEnvironmentVariableW(windows::kOnErrorVariable, nullptr); }
    std::shared_ptr<IDesktop> Desktop() override { return std::make_shared<windows::Desktop>(); }
    void Plan(const std::vector<Act>& /*acts*/) override {}
    std::string Shown() const override { return ""; }
    bool ClipboardHolds(const std::string& text) const override {
        if (::OpenClipboard(nullptr) == 0) return false;
        const HANDLE memory = ::GetClipboardData(CF_UNICODETEXT);
        const auto* const held = static_cast<const wchar_t*>(::GlobalLock(memory));
        const bool same = held != nullptr && windows::Utf8(held) == text;
        ::GlobalUnlock(memory);
        ::CloseClipboard();
        return same;
    }
    std::vector<std::pair<std::function<std::shared_ptr<IDesktop>()>, bool>> WithoutUser() override {
        const auto with = [this](const wchar_t* policy) {
            return [=, this] {
                ::SetEnvironmentVariableW(windows::kOnErrorVariable, policy);
                return Desktop();
            };
        };
        return {{with(L"next"), true}, {with(L"leave"), false}, {with(L"ask"), false}};
    }
};

}  // namespace

std::vector<NamedDesktop> Desktops() {
    return {FakeDesktop(), {"Windows", [](fake::World&) -> std::unique_ptr<DesktopSubject> {
                                return std::make_unique<WindowsSubject>();
                            }}};
}

}  // namespace orvo
