#include "platform/posix/OperatingSystem.h"

#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <system_error>

#include "platform/RuntimeError.h"

namespace orvo::posix {
namespace {
constexpr Long kLinux = 4;

std::string Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

}  // namespace

std::string FolderOfUser(const std::string& shared) {
    std::string folder = shared + "/orvo-tile-" + std::to_string(::geteuid());
    const int reason = ::mkdir(folder.c_str(), S_IRWXU) == 0 ? 0 : errno;
    struct stat found {};
    if (::lstat(folder.c_str(), &found) != 0) {
        throw RuntimeError(Fault::PathNotFound, folder + " (" + std::generic_category().message(reason) +
                                                    "); set TEMP to a folder of your own");
    }
    const bool own =
        S_ISDIR(found.st_mode) && found.st_uid == ::geteuid() && (found.st_mode & (S_IWGRP | S_IWOTH)) == 0;
    if (!own) {
        throw RuntimeError(
            Fault::PermissionDenied,
            folder + " is not a folder of this user's alone; set TEMP to a folder of your own");
    }
    return folder;
}

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

std::string OperatingSystem::TempFolder() {
    for (const char* const name : {"TEMP", "TMPDIR"}) {
        std::string folder = Variable(name);
        if (!folder.empty()) return folder;
    }
    return FolderOfUser("/tmp");
}

}  // namespace orvo::posix
