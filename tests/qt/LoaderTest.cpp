// Tests of the way to the window module. They run before this process has an application of the toolkit.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

#include "platform/fake/World.h"
#include "platform/real/WindowModule.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::real {
namespace {

using testing::HasSubstr;

void Set(const char* variable, const char* value) {
    if (value == nullptr) {
        unsetenv(variable);
    } else {
        setenv(variable, value, 1);
    }
}

/// Names displays for the length of a test; then the one in memory is back.
struct DisplayNames {
    DisplayNames(const char* platform, const char* display) {
        Set("QT_QPA_PLATFORM", platform);
        Set("DISPLAY", display);
        Set("WAYLAND_DISPLAY", nullptr);
    }
    ~DisplayNames() { Set("QT_QPA_PLATFORM", "offscreen"); }
    DisplayNames(const DisplayNames&) = delete;
    DisplayNames& operator=(const DisplayNames&) = delete;
};

WindowOptions Built() {
    WindowOptions options;
    options.moduleFolder = ORVO_BUILT_MODULES;
    return options;
}

std::string WhyNot(const WindowOptions& options) {
    std::string whyNot;
    EXPECT_EQ(LoadWindowDesktop(options, whyNot), nullptr);
    return whyNot;
}

TEST(WindowModule, WithoutADisplayThereIsAReasonAndNoCrash) {
    {
        const DisplayNames none(nullptr, nullptr);
        EXPECT_EQ(WhyNot(Built()), "there is no display");
    }
    {
        const DisplayNames dead(nullptr, ":4711");
        EXPECT_EQ(WhyNot(Built()), "no window can be shown here: could not connect to display :4711");
    }
    const DisplayNames unknown("nonsense", nullptr);
    EXPECT_THAT(WhyNot(Built()), HasSubstr("no window can be shown here"));
}

TEST(WindowModule, AMissingOrBrokenModuleIsNamed) {
    const TempFolder folder;
    WindowOptions options;
    options.moduleFolder = folder.Path();
    EXPECT_THAT(WhyNot(options), HasSubstr("orvo_window.so is not installed"));
    folder.Put("orvo_window.so", "no library");
    EXPECT_THAT(WhyNot(options), HasSubstr(folder / "orvo_window.so"));
}

TEST(WindowModule, OnDemandTheOtherDesktopServesWhereThereIsNoWindow) {
    const auto world = fake::World::Make();
    std::vector<std::string> told;
    const auto desktop = WindowOnDemand(Built(), world->MakePlatform().desktop,
                                        [&](const std::string& whyNot) { told.push_back(whyNot); });
    EXPECT_TRUE(told.empty());
    const DisplayNames none(nullptr, nullptr);
    desktop->Beep();
    desktop->Open("mailto:a@example.com");
    EXPECT_EQ(world->beeps, 1);
    EXPECT_EQ(world->opened, std::vector<std::string>{"mailto:a@example.com"});
    EXPECT_EQ(told, std::vector<std::string>{"there is no display"});
}

TEST(WindowModule, OpensBesideTheProgramAndLeavesTheLocaleAlone) {
    std::setlocale(LC_ALL, "C");
    std::string whyNot;
    const auto desktop = LoadWindowDesktop(Built(), whyNot);
    ASSERT_NE(desktop, nullptr) << whyNot;
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    EXPECT_GT(desktop->Screen().width, 0);
    try {
        desktop->Print({"line"});
        FAIL() << "printed without a printer";
    } catch (const RuntimeError& failure) {  // crosses from the module into this program
        EXPECT_EQ(failure.Number(), 482);
        EXPECT_THAT(failure.Description(), HasSubstr("no default printer"));
    }
}

}  // namespace
}  // namespace orvo::real
