// Tests of the way to the window module. They run before this process has an application of the toolkit.
#include <gmock/gmock.h>

#include <clocale>

#include "platform/linux/WindowModule.h"
#include "tests/Failure.h"
#include "tests/Variable.h"
#include "tests/adapters/TempFolder.h"

namespace orvo::linux_platform {
namespace {

using testing::HasSubstr;

std::string WhyNot(const std::string& moduleFolder) {
    WindowOptions options;
    options.moduleFolder = moduleFolder;
    std::string whyNot;
    EXPECT_EQ(LoadWindowDesktop(options, whyNot), nullptr);
    return whyNot;
}

TEST(WindowModule, WithoutADisplayOrAModuleThereIsAReasonAndNoCrash) {
    {
        const Variable first("DISPLAY", nullptr), second("WAYLAND_DISPLAY", nullptr);
        const Variable third("QT_QPA_PLATFORM", nullptr);
        EXPECT_THAT(WhyNot(ORVO_BUILT_MODULES), HasSubstr("there is no display"));
        const Variable fourth("QT_QPA_PLATFORM", "nonsense");
        EXPECT_THAT(WhyNot(ORVO_BUILT_MODULES), HasSubstr("no window can be shown here"));
    }
    const TempFolder folder;
    EXPECT_THAT(WhyNot(folder.Path()), HasSubstr("orvo_window.so is not installed"));
    folder.Put("orvo_window.so", "no library");
    EXPECT_THAT(WhyNot(folder.Path()), HasSubstr(folder / "orvo_window.so"));
}

TEST(WindowModule, OpensBesideTheProgramAndLeavesTheLocaleAlone) {
    std::setlocale(LC_ALL, "C");
    WindowOptions options;
    options.moduleFolder = ORVO_BUILT_MODULES;
    std::string whyNot;
    const auto desktop = LoadWindowDesktop(options, whyNot);
    ASSERT_NE(desktop, nullptr) << whyNot;
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    EXPECT_GT(desktop->Screen().width, 0);
    EXPECT_EQ(NumberOf([&] { desktop->Print({"line"}); }), 482) << "crosses from the module into the program";
}

}  // namespace
}  // namespace orvo::linux_platform
