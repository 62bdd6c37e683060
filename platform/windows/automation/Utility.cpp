#include "platform/windows/automation/Utility.h"

#include "platform/utility/Services.h"
#include "platform/windows/Platform.h"
#include "platform/windows/automation/Automation.h"
#include "platform/windows/automation/HostObjects.h"
#include "platform/windows/automation/ScriptObject.h"
#include "platform/windows/desktop/WindowCollection.h"
#include "platform/windows/imaging/RasterIO.h"
#include "platform/windows/system/ProcessRunner.h"
#include "platform/windows/system/WideText.h"

namespace orvo::windows {
namespace {

Value Nothing() {
    return Value::Adopt(nullptr);
}

/// The language is asked for at every call: the environment of a process may change.
class OwnUtilTools final : public IUtilTools {
  public:
    explicit OwnUtilTools(std::shared_ptr<IUtilTools> names) : names_(std::move(names)) {}
    Integer GetLanguageOffset() override { return LanguageOffset(); }
    std::string GetFreeFileName(const std::string& folder, const std::string& baseName,
                                const std::vector<std::string>& extensions) override {
        return names_->GetFreeFileName(folder, baseName, extensions);
    }

  private:
    std::shared_ptr<IUtilTools> names_;
};

class HostUtilTools final : public IUtilTools {
  public:
    explicit HostUtilTools(Automation object) : object_(std::move(object)) {}
    Integer GetLanguageOffset() override {
        const Long offset = object_.Call(L"GetLanguageOffset").AsLong();
        if (offset < -0x8000 || offset > 0x7FFF) throw RuntimeError(Fault::Overflow);
        return static_cast<Integer>(offset);
    }
    std::string GetFreeFileName(const std::string& folder, const std::string& baseName,
                                const std::vector<std::string>& extensions) override {
        std::vector<Value> arguments{folder, baseName};
        arguments.insert(arguments.end(), extensions.begin(), extensions.end());
        return object_.Call(L"GetFreeFileName", std::move(arguments)).AsText();
    }

  private:
    Automation object_;
};

class HostRasterConvert final : public IRasterConvert {
  public:
    explicit HostRasterConvert(Automation object) : object_(std::move(object)) {}
    std::string ExportRasterWindow(const std::shared_ptr<IRasterLayer>& layer, const std::string& targetFile,
                                   Integer quality, const std::shared_ptr<void>& /*reserved*/,
                                   const std::shared_ptr<IEnvelope>& envelope, Long width,
                                   Long height) override {
        return object_
            .Call(L"ExportRasterWindow", {Value::Adopt(DispatchOf(layer)), targetFile, quality, Nothing(),
                                          Value::Adopt(DispatchOf(envelope)), width, height})
            .AsText();
    }
    bool ConvertExtern(const std::string& program, const std::string& sourceFile, std::string& targetFile,
                       Integer quality, const PixelWindow* window, bool wait) override {
        Value target(targetFile);
        Ref<IDispatch> part;
        if (window != nullptr) part = Value::Adopt(NewWindowCollection(*window)).AsObject();
        const bool done = object_
                              .Call(L"ConvertExtern", {program, sourceFile, Value::ByReference(target),
                                                       quality, Value(part.Get()), wait})
                              .AsBool();
        targetFile = target.AsText();
        return done;
    }

  private:
    Automation object_;
};

template <class Wrapper, class Interface>
platform::Maker<Interface> HostOr(const wchar_t* progId, const platform::Maker<Interface>& own) {
    return [progId, own]() -> std::shared_ptr<Interface> {
        Automation object = CreateByName(progId);
        if (object.Dispatch() == nullptr) return own();
        return std::make_shared<Wrapper>(std::move(object));
    };
}

/// What failed stands in a debugger's window: the component itself hears only that nothing was written.
void TellDebugger(const utility::Request& asked, const std::string& reason) {
    ::OutputDebugStringW(Wide("Orvo_Tile: " + asked.target + ": " + reason + "\n").c_str());
}

}  // namespace

UtilityMakers OwnUtility() {
    utility::Settings settings;
    settings.onFailure = TellDebugger;
    auto services = utility::MakeServices(settings, NewRasterIO, std::make_shared<ProcessRunner>());
    return {[names = std::move(services.newUtilTools)] { return std::make_shared<OwnUtilTools>(names()); },
            std::move(services.newRasterConvert)};
}

UtilityMakers HostUtilityOr(const UtilityMakers& own) {
    UtilityMakers made;
    made.newUtilTools = HostOr<HostUtilTools>(L"BrindleUtil.clsUtilTools", own.newUtilTools);
    made.newRasterConvert = HostOr<HostRasterConvert>(L"BrindleUtil.clsRasterConvert", own.newRasterConvert);
    return made;
}

Integer LanguageOffset() {
    constexpr Integer kGerman = 0, kEnglish = 10000, kFrench = 20000;
    const std::wstring named = Environment(kLanguageVariable);
    if (named == L"de") return kGerman;
    if (named == L"en") return kEnglish;
    if (named == L"fr") return kFrench;
    switch (PRIMARYLANGID(::GetUserDefaultUILanguage())) {
        case LANG_GERMAN:
            return kGerman;
        case LANG_FRENCH:
            return kFrench;
        default:
            return kEnglish;
    }
}

}  // namespace orvo::windows
