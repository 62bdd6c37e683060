#include "host/ErrorLog.h"

#include <filesystem>
#include <utility>

#include "errorreport/ErrorDialog.h"
#include "errorreport/Version.h"
#include "platform/Platform.h"
#include "support/SystemPath.h"

namespace orvo::host {
namespace {

namespace fs = std::filesystem;

std::string PathOf(const char* extension) {
    const std::string folder = Object(platform::Current().operatingSystem).TempFolder();
    std::error_code missing;
    const fs::path real = fs::weakly_canonical(SystemPath(folder), missing);
    return ((missing ? fs::path(SystemPath(folder)) : real) / (std::string(kComponentName) + extension))
        .string();
}

/// Runs what the log needs; its failure names what was to be reported, too. The callers of the failing
/// procedure fail here in their turn: what is told already stays.
template <class Step>
auto Telling(Step&& step) {
    try {
        return step();
    } catch (const RuntimeError& failure) {
        constexpr const char* kAdvice = "; set TEMP to a folder that can be written. What failed: ";
        const Failure& reported = CurrentFailure();
        if (reported.number == 0) throw;
        if (reported.description.find(kAdvice) != std::string::npos)
            throw RuntimeError(failure.Number(), reported.description);
        throw RuntimeError(failure.Number(), "The error report cannot be logged. " + failure.Description() +
                                                 kAdvice + std::to_string(reported.number) + " (" +
                                                 reported.description + ")");
    }
}

class TellingFiles final : public ITextFiles {
  public:
    explicit TellingFiles(std::shared_ptr<ITextFiles> files) : files_(std::move(files)) {}
    bool Exists(const std::string& path) override { return files_->Exists(path); }
    void Replace(const std::string& path, const std::string& text) override { files_->Replace(path, text); }
    void Append(const std::string& path, const std::string& text) override {
        Telling([&] { files_->Append(path, text); });
    }

  private:
    std::shared_ptr<ITextFiles> files_;
};

class TellingSystem final : public IOperatingSystem {
  public:
    explicit TellingSystem(std::shared_ptr<IOperatingSystem> system) : system_(std::move(system)) {}
    OSVersion GetVersion() override { return system_->GetVersion(); }
    std::string TempFolder() override {
        return Telling([&] { return system_->TempFolder(); });
    }

  private:
    std::shared_ptr<IOperatingSystem> system_;
};

}  // namespace

std::string ErrorLogPath() {
    return PathOf(".EPT");
}

std::string SavedReportPath() {
    return PathOf(".ERR");
}

std::string WithSystemPaths(std::string text) {
    const std::string name = std::string("\\") + kComponentName;
    const std::size_t end = text.find(name);
    if (end == std::string::npos) return text;
    const std::string folder = Object(platform::Current().operatingSystem).TempFolder();
    if (text.substr(0, end).ends_with(folder)) text.replace(end, 1, "/");
    return text;
}

void TellOfLog(platform::Platform& platform) {
    platform.textFiles = std::make_shared<TellingFiles>(std::move(platform.textFiles));
    platform.operatingSystem = std::make_shared<TellingSystem>(std::move(platform.operatingSystem));
}

}  // namespace orvo::host
