#include "platform/linux/Platform.h"

#include <langinfo.h>

#include <clocale>
#include <utility>

#include "platform/console/Desktop.h"
#include "platform/gdal/RasterIO.h"
#include "platform/gdal/RasterWorkspace.h"
#include "platform/memory/Dictionary.h"
#include "platform/memory/Envelope.h"
#include "platform/posix/Clock.h"
#include "platform/posix/FileSystem.h"
#include "platform/posix/OperatingSystem.h"
#include "platform/posix/ProcessRunner.h"
#include "platform/posix/Registry.h"
#include "platform/posix/TextFiles.h"
#include "platform/utility/Services.h"

namespace orvo::linux_platform {
namespace {

std::shared_ptr<IDesktop> Terminal(const std::function<bool()>& interrupted) {
    console::DesktopOptions options = console::TerminalOptions(std::make_shared<posix::ProcessRunner>());
    options.interrupted = interrupted;
    return std::make_shared<console::Desktop>(std::move(options));
}

}  // namespace

platform::Platform MakePlatform(Options options) {
    platform::Platform made;
    const auto interrupted = options.services.interrupted;
    made.newEnvelope = [interrupted] {
        if (interrupted()) throw RuntimeError(Fault::UserInterrupt);
        return std::make_shared<memory::Envelope>();
    };
    made.newDictionary = [] { return std::make_shared<memory::Dictionary>(); };
    made.newFileSystemObject = [] { return std::make_shared<posix::FileSystem>(); };
    auto services =
        utility::MakeServices(options.services, gdal::NewRasterIO, std::make_shared<posix::ProcessRunner>());
    made.newUtilTools = std::move(services.newUtilTools);
    made.newRasterConvert = std::move(services.newRasterConvert);
    made.newRasterWorkspaceFactory = gdal::NewRasterWorkspaceFactory;
    made.registry = std::make_shared<posix::Registry>();
    made.clock = std::make_shared<posix::Clock>();
    made.operatingSystem = std::make_shared<posix::OperatingSystem>();
    made.textFiles = std::make_shared<posix::TextFiles>();
    made.desktop = options.desktop ? std::move(options.desktop) : Terminal(interrupted);
    made.decimalSeparator =
        options.decimalSeparator.empty() ? UserDecimalSeparator() : std::move(options.decimalSeparator);
    return made;
}

std::string UserDecimalSeparator() {
    // A locale object of our own: the process's locale stays as it is.
    const locale_t locale = newlocale(LC_NUMERIC_MASK, "", static_cast<locale_t>(nullptr));
    if (locale == static_cast<locale_t>(nullptr)) return ".";
    std::string separator = nl_langinfo_l(RADIXCHAR, locale);
    freelocale(locale);
    return separator.empty() ? "." : separator;
}

}  // namespace orvo::linux_platform
