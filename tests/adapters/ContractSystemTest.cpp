// What every registry and every clock does.
#include <gtest/gtest.h>

#include <memory>

#include "platform/fake/World.h"
#include "platform/posix/Clock.h"
#include "platform/posix/Registry.h"
#include "tests/Variable.h"

namespace orvo {
namespace {

struct System {
    std::shared_ptr<IRegistry> registry;
    std::shared_ptr<IClock> clock;
    std::shared_ptr<void> behind;
};

constexpr const char* kKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

/// Both hold "AppData" = "/Grün" in the shell folders.
System RealSystem() {
    return {std::make_shared<posix::Registry>(), std::make_shared<posix::Clock>(),
            std::make_shared<Variable>("XDG_DATA_HOME", "/Grün")};
}

System FakeSystem() {
    const auto world = fake::World::Make();
    world->registry[kKey] = {{"AppData", {IRegistry::kTypeString, std::string("/Grün\0", 7)}}};
    const auto platform = world->MakePlatform();
    return {platform.registry, platform.clock, world};
}

class SystemContract : public testing::TestWithParam<System (*)()> {
  protected:
    System system = GetParam()();
    IRegistry& registry = *system.registry;
};

INSTANTIATE_TEST_SUITE_P(All, SystemContract, testing::Values(&RealSystem, &FakeSystem),
                         [](const auto& param) { return param.index == 0 ? "Real" : "Fake"; });

TEST_P(SystemContract, ReadsAText) {
    Long key = 0;
    ASSERT_EQ(registry.RegOpenKey(IRegistry::kCurrentUser, kKey, key), 0);
    Long type = 0;
    Long size = 0;
    ASSERT_EQ(registry.RegQueryValueEx(key, "AppData", type, nullptr, size), 0);
    EXPECT_EQ(type, IRegistry::kTypeString);
    ASSERT_EQ(size, 7);
    std::string text(10, '?');
    size = 10;
    ASSERT_EQ(registry.RegQueryValueEx(key, "AppData", type, text.data(), size), 0);
    EXPECT_EQ(text.substr(0, static_cast<std::size_t>(size)), std::string("/Grün\0", 7));
    EXPECT_EQ(registry.RegCloseKey(key), 0);
}

TEST_P(SystemContract, AnswersWithTheSystemsCodes) {
    Long key = 77;
    EXPECT_EQ(registry.RegOpenKey(IRegistry::kCurrentUser, "Software\\Nobody", key), 2);
    EXPECT_EQ(key, 77);
    Long type = 0;
    Long size = 1;
    EXPECT_EQ(registry.RegQueryValueEx(77, "AppData", type, nullptr, size), 6);
    EXPECT_EQ(registry.RegCloseKey(77), 6);
    ASSERT_EQ(registry.RegOpenKey(IRegistry::kCurrentUser, kKey, key), 0);
    EXPECT_EQ(registry.RegQueryValueEx(key, "None", type, nullptr, size), 2);
    char little = '?';
    size = 1;
    EXPECT_EQ(registry.RegQueryValueEx(key, "AppData", type, &little, size), 234);
    EXPECT_EQ(size, 7);
    EXPECT_EQ(little, '?');
    EXPECT_EQ(registry.RegCloseKey(key), 0);
    EXPECT_EQ(registry.RegCloseKey(key), 6);
}

TEST_P(SystemContract, TellsAPlausibleTime) {
    const std::int64_t before = system.clock->Seconds();
    const LocalTime time = system.clock->Local(before);
    EXPECT_GE(time.year, 2024);
    EXPECT_TRUE(time.month >= 1 && time.month <= 12 && time.day >= 1 && time.day <= 31);
    EXPECT_TRUE(time.hour <= 23 && time.minute <= 59 && time.second <= 60);
    EXPECT_GE(system.clock->Seconds(), before);
}

}  // namespace
}  // namespace orvo
