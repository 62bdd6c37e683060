// The real platform, put together: what a program on Linux installs before it uses the component.
#pragma once

#include <memory>
#include <string>

#include "platform/Platform.h"
#include "platform/utility/Settings.h"

namespace orvo::linux_platform {

struct Options {
    /// Language, interruption, and who hears what was written and what failed.
    utility::Settings services;
    /// Shows failures and messages; null for the terminal, which asks where somebody can answer.
    std::shared_ptr<IDesktop> desktop;
    std::string decimalSeparator;  ///< empty for that of the user's locale
};

/// A platform whose rasters come from files, databases and services, and whose tiles go to the disk:
///
///     orvo::platform::Install(orvo::linux_platform::MakePlatform());
///
/// Once `services.interrupted` holds, making an envelope fails with number 18: that ends a run at its next
/// cell.
platform::Platform MakePlatform(Options options = {});

/// The decimal separator of the user's locale; "." where it is not known.
std::string UserDecimalSeparator();

}  // namespace orvo::linux_platform
