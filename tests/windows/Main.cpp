// Checks of the Windows platform; prints how many were made.
#include <objbase.h>

#include "tests/windows/Checks.h"

int main(int count, char** arguments) {
    namespace checks = orvo::checks;
    if (count > 1) return checks::ServeChecks(count, arguments);
    ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    for (const auto& group : {checks::CheckHostObjects, checks::CheckSystem, checks::CheckImages,
                              checks::CheckUtility, checks::CheckDesktop}) {
        try {
            group();
        } catch (const std::exception& failure) {
            checks::Check(false, failure.what());
        }
    }
    std::cout << "checks " << checks::made << " failed " << checks::failed << '\n';
    return checks::failed == 0 ? 0 : 1;
}
