#include <gtest/gtest.h>

#include "platform/linux/Platform.h"
#include "tests/Failure.h"

namespace orvo::linux_platform {
namespace {

TEST(RealPlatform, AnInterruptionEndsTheMakingOfEnvelopes) {
    bool interrupted = false;
    Options options;
    options.services.interrupted = [&] { return interrupted; };
    const platform::Platform made = MakePlatform(std::move(options));
    EXPECT_TRUE(platform::Create(made.newEnvelope)->IsEmpty());
    interrupted = true;
    EXPECT_EQ(NumberOf(made.newEnvelope), 18);
}

}  // namespace
}  // namespace orvo::linux_platform
