#include "platform/windows/Platform.h"

#include "platform/windows/automation/Automation.h"
#include "platform/windows/automation/EnvelopeObject.h"
#include "platform/windows/automation/HostObjects.h"
#include "platform/windows/automation/Scripting.h"
#include "platform/windows/automation/Utility.h"
#include "platform/windows/automation/Workspace.h"
#include "platform/windows/desktop/Desktop.h"
#include "platform/windows/system/System.h"
#include "platform/windows/system/WideText.h"

namespace orvo::windows {
namespace {

/// ProgIDs under which a host's map platform may register classes of its own.
constexpr const wchar_t* kHostEnvelope = L"OrvoHost.Envelope";
constexpr const wchar_t* kHostWorkspaceFactory = L"OrvoHost.RasterWorkspaceFactory";

std::shared_ptr<IEnvelope> AnyEnvelope() {
    const Automation host = CreateByName(kHostEnvelope);
    return host.Dispatch() == nullptr ? NewEnvelope() : EnvelopeOf(host.Dispatch());
}

std::shared_ptr<IRasterWorkspaceFactory> AnyWorkspaceFactory() {
    const Automation host = CreateByName(kHostWorkspaceFactory);
    return host.Dispatch() == nullptr ? NewWorkspaceFactory() : WorkspaceFactoryOf(host.Dispatch());
}

std::string DecimalSeparator() {
    wchar_t separator[8] = L"";
    const int length = ::GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, separator, 8);
    return length > 1 ? Utf8({separator, static_cast<std::size_t>(length) - 1}) : ".";
}

}  // namespace

platform::Platform MakePlatform() {
    platform::Platform made;
    made.newEnvelope = AnyEnvelope;
    made.newDictionary = NewDictionary;
    made.newFileSystemObject = [] { return std::make_shared<FileSystemObject>(); };
    auto utility = HostUtilityOr(OwnUtility());
    made.newUtilTools = std::move(utility.newUtilTools);
    made.newRasterConvert = std::move(utility.newRasterConvert);
    made.newRasterWorkspaceFactory = AnyWorkspaceFactory;
    made.registry = std::make_shared<Registry>();
    made.clock = std::make_shared<Clock>();
    made.operatingSystem = std::make_shared<OperatingSystem>();
    made.textFiles = std::make_shared<TextFiles>();
    made.desktop = std::make_shared<Desktop>();
    made.decimalSeparator = DecimalSeparator();
    return made;
}

}  // namespace orvo::windows
