// What every platform does: the same tests for the system's own platform and for the one in memory.
#pragma once

#include <gmock/gmock.h>

#include "platform/Platform.h"
#include "tests/Failure.h"
#include "tests/Rows.h"

namespace orvo {

/// A platform under test, in an outside world that the tests know.
struct Subject {
    std::string system;  ///< "Linux", "Windows" or "Fake"
    platform::Platform services;
    std::string folder;        ///< holds the source alone; no separator at its end
    std::string source;        ///< an image of 40 × 30 cells
    std::string format;        ///< how its dataset names it
    std::string program;       ///< copies the file named first to the name given second
    std::string registryKey;   ///< of the current user
    std::string registryName;  ///< a text there: "/Grün"
    /// The source as a layer: cells of 2 × 3 map units, the upper left corner at (1000, 5000).
    std::function<std::shared_ptr<IRasterLayer>()> openSource;
    std::function<std::string(const std::string&)> contentOf;
    std::function<void(const std::string&)> makeReadOnly;
    std::shared_ptr<void> world{};  ///< lives as long as the platform is tested
};

Subject MakeFakeSubject();
/// The platform of the system that the tests run on. Its texts are French.
Subject MakeSystemSubject();

class Contract : public testing::TestWithParam<std::string> {
  protected:
    Contract() { platform::Install(services); }
    ~Contract() override { platform::Install({}); }

    const Subject subject = GetParam() == "Fake" ? MakeFakeSubject() : MakeSystemSubject();
    const platform::Platform& services = subject.services;
};

// NOLINTNEXTLINE: GoogleTest's own way
#define ORVO_CONTRACT(contract)                                                \
    INSTANTIATE_TEST_SUITE_P(All, contract, testing::Values("System", "Fake"), \
                             [](const auto& each) { return each.param; })

}  // namespace orvo
