#include "platform/linux/WindowModule.h"

#include <dlfcn.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/posix/ProcessRunner.h"

namespace orvo::linux_platform {
namespace {

namespace fs = std::filesystem;
using SteadyClock = std::chrono::steady_clock;

constexpr auto kDisplayPatience = std::chrono::seconds(10);

bool Set(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

/// The folder with the module: as told, beside the running program's own folder, or where it is installed.
std::optional<fs::path> ModuleFolder(const std::string& told) {
    std::error_code ignored;
    std::vector<fs::path> candidates;
    if (told.empty()) {
        const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
        if (!program.empty()) candidates.push_back(program.parent_path().parent_path() / "lib/orvo-tile");
        candidates.emplace_back(ORVO_MODULE_FOLDER);
    } else {
        candidates.emplace_back(told);
    }
    for (const fs::path& folder : candidates)
        if (fs::exists(folder / qt::kModuleFile, ignored)) return folder;
    return std::nullopt;
}

std::string FirstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

/// Lets another process connect to the display first: the toolkit ends a process that cannot. Empty where it
/// connects.
std::string DisplayTrouble(const std::string& helper) {
    if (!DisplayNamed()) return "there is no display";
    const auto start = SteadyClock::now();
    const auto late = [start] { return SteadyClock::now() - start > kDisplayPatience; };
    const ProcessResult check = posix::ProcessRunner().Run(helper, {"check"}, "", late);
    if (check.started && check.exitCode == 0) return "";
    if (late()) return "the display does not answer";
    return "no window can be shown here" + (check.output.empty() ? "" : ": " + FirstLine(check.output));
}

std::shared_ptr<IDesktop> OpenModule(const WindowOptions& options, const fs::path& folder,
                                     std::string& whyNot) {
    // Stays open to the end: the toolkit cannot be taken out of a process again.
    void* module = dlopen((folder / qt::kModuleFile).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    void* entry = module == nullptr ? nullptr : dlsym(module, qt::kModuleEntry);
    if (entry == nullptr) {
        const char* error = dlerror();
        whyNot = error == nullptr ? "the window module has no entry" : error;
        return nullptr;
    }
    std::shared_ptr<IDesktop> desktop;
    const std::string helper = (folder / qt::kHelperFile).string();
    reinterpret_cast<qt::ModuleEntry*>(entry)(
        options, helper, [&helper] { return DisplayTrouble(helper); }, desktop, whyNot);
    return desktop;
}

/// Decides on first use.
class DesktopOnDemand final : public IDesktop {
  public:
    DesktopOnDemand(WindowOptions options, std::shared_ptr<IDesktop> otherwise,
                    std::function<void(const std::string&)> onUnavailable)
        : options_(std::move(options)),
          otherwise_(std::move(otherwise)),
          onUnavailable_(std::move(onUnavailable)) {}

    MessageAnswer MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                             MessageButtons buttons) override {
        return Used().MessageBox(text, title, icon, buttons);
    }
    void ShowModal(IDialogEvents& events) override { Used().ShowModal(events); }
    void Beep() override { Used().Beep(); }
    /// Before the first window there is no pointer of ours, and the module need not be loaded for it.
    void ResetPointer() override {
        if (used_) used_->ResetPointer();
    }
    Box Screen() override { return Used().Screen(); }
    void Print(const std::vector<std::string>& lines) override { Used().Print(lines); }
    void CopyToClipboard(const std::string& text) override { Used().CopyToClipboard(text); }
    void Open(const std::string& address) override { Used().Open(address); }

  private:
    IDesktop& Used() {
        if (used_) return *used_;
        std::string whyNot;
        used_ = LoadWindowDesktop(options_, whyNot);
        if (!used_) {
            used_ = otherwise_;
            onUnavailable_(whyNot);
        }
        return *used_;
    }

    WindowOptions options_;
    std::shared_ptr<IDesktop> otherwise_;
    std::function<void(const std::string&)> onUnavailable_;
    std::shared_ptr<IDesktop> used_;
};

}  // namespace

bool DisplayNamed() {
    return Set("DISPLAY") || Set("WAYLAND_DISPLAY") || Set("QT_QPA_PLATFORM");
}

std::shared_ptr<IDesktop> LoadWindowDesktop(const WindowOptions& options, std::string& whyNot) {
    const auto folder = ModuleFolder(options.moduleFolder);
    if (!folder) {
        whyNot = std::string("the window module ") + qt::kModuleFile + " is not installed";
        return nullptr;
    }
    return OpenModule(options, *folder, whyNot);
}

std::shared_ptr<IDesktop> WindowOnDemand(WindowOptions options, std::shared_ptr<IDesktop> otherwise,
                                         std::function<void(const std::string&)> onUnavailable) {
    return std::make_shared<DesktopOnDemand>(std::move(options), std::move(otherwise),
                                             std::move(onUnavailable));
}

}  // namespace orvo::linux_platform
