// The system's clock, in whole seconds.
#pragma once

#include "platform/System.h"

namespace orvo::posix {

/// Seconds since 1970 in UTC; local times follow the process's time zone.
class Clock final : public IClock {
  public:
    Clock();
    std::int64_t Seconds() override;
    LocalTime Local(std::int64_t seconds) override;
};

}  // namespace orvo::posix
