#include <gtest/gtest.h>

#include "platform/linux/Platform.h"

namespace orvo::linux_platform {
namespace {

TEST(RealPlatform, AnInterruptionEndsTheMakingOfEnvelopes) {
    bool interrupted = false;
    Options options;
    options.services.interrupted = [&] { return interrupted; };
    const platform::Platform made = MakePlatform(std::move(options));
    EXPECT_TRUE(platform::Create(made.newEnvelope)->IsEmpty());
    interrupted = true;
    try {
        made.newEnvelope();
        FAIL() << "made an envelope";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), 18);
    }
}

TEST(RealPlatform, NothingIsMissing) {
    Options options;
    options.services.languageOffset = 20000;
    const platform::Platform made = MakePlatform(std::move(options));
    EXPECT_EQ(platform::Create(made.newUtilTools)->GetLanguageOffset(), 20000);
    EXPECT_NE(platform::Create(made.newRasterConvert), nullptr);
    EXPECT_NE(platform::Create(made.newRasterWorkspaceFactory), nullptr);
    EXPECT_TRUE(platform::Create(made.newFileSystemObject)->FolderExists("/"));
    EXPECT_EQ(platform::Create(made.newDictionary)->Count(), 0);
    EXPECT_GT(made.clock->Seconds(), 0);
    EXPECT_EQ(made.operatingSystem->GetVersion().platformId, 4);
    EXPECT_NE(made.registry, nullptr);
    EXPECT_NE(made.desktop, nullptr);
    EXPECT_FALSE(made.decimalSeparator.empty());
}

}  // namespace
}  // namespace orvo::linux_platform
