#include "platform/posix/OperatingSystem.h"

#include <sys/utsname.h>

#include <charconv>

namespace orvo::posix {
namespace {
constexpr Long kLinux = 4;
}  // namespace

OSVersion VersionOfRelease(std::string_view release) {
    OSVersion version;
    version.platformId = kLinux;
    const char* at = release.data();
    const char* const end = at + release.size();
    for (Long* number : {&version.major, &version.minor, &version.build}) {
        const auto [behind, error] = std::from_chars(at, end, *number);
        if (error != std::errc() || behind == end || *behind != '.') break;
        at = behind + 1;
    }
    return version;
}

OSVersion OperatingSystem::GetVersion() {
    utsname system{};
    return ::uname(&system) == 0 ? VersionOfRelease(system.release) : VersionOfRelease("");
}

}  // namespace orvo::posix
