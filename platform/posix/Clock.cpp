#include "platform/posix/Clock.h"

#include <ctime>

namespace orvo::posix {

Clock::Clock() {
    ::tzset();
}

std::int64_t Clock::Seconds() {
    return std::time(nullptr);
}

LocalTime Clock::Local(std::int64_t seconds) {
    const std::time_t time = seconds;
    std::tm local{};
    if (::localtime_r(&time, &local) == nullptr) return {};
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

}  // namespace orvo::posix
