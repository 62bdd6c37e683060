// What every registry and every clock does.
#include <gtest/gtest.h>

#include <memory>

#include "platform/fake/World.h"
#include "platform/posix/Clock.h"
#include "platform/posix/RegistryFile.h"
#include "tests/adapters/TempFolder.h"

namespace orvo {
namespace {

struct System {
    std::shared_ptr<IRegistry> registry;
    std::shared_ptr<IClock> clock;
    std::shared_ptr<void> behind;
};

/// Both hold Software\Maker with "Text" = "Grün" and "Bytes" = 0x00 0x02.
System RealSystem() {
    auto folder = std::make_shared<TempFolder>();
    const std::string file = folder->Put("r.reg",
                                         "Windows Registry Editor Version 5.00\n\n"
                                         "[HKEY_CURRENT_USER\\Software\\Maker]\n"
                                         "\"Text\"=\"Grün\"\n\"Bytes\"=hex:00,02\n");
    return {std::make_shared<posix::RegistryFile>(file), std::make_shared<posix::Clock>(), folder};
}

System FakeSystem() {
    const auto world = fake::World::Make();
    world->registry["Software\\Maker"] = {
        {"Text", {IRegistry::kTypeString, std::string("Grün\0", 6)}},
        {"Bytes", {IRegistry::kTypeBinary, std::string("\0\2", 2)}},
    };
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

TEST_P(SystemContract, ReadsValues) {
    Long key = 0;
    ASSERT_EQ(registry.RegOpenKey(IRegistry::kCurrentUser, "Software\\Maker", key), 0);
    Long type = 0;
    Long size = 0;
    ASSERT_EQ(registry.RegQueryValueEx(key, "Text", type, nullptr, size), 0);
    EXPECT_EQ(type, IRegistry::kTypeString);
    ASSERT_EQ(size, 6);
    std::string text(10, '?');
    size = 10;
    ASSERT_EQ(registry.RegQueryValueEx(key, "Text", type, text.data(), size), 0);
    EXPECT_EQ(text.substr(0, static_cast<std::size_t>(size)), std::string("Grün\0", 6));

    std::int16_t number = 0;
    size = sizeof number;
    ASSERT_EQ(registry.RegQueryValueEx(key, "Bytes", type, reinterpret_cast<char*>(&number), size), 0);
    EXPECT_EQ(type, IRegistry::kTypeBinary);
    EXPECT_EQ(number, 512);
    EXPECT_EQ(registry.RegCloseKey(key), 0);
}

TEST_P(SystemContract, AnswersWithTheSystemsCodes) {
    Long key = 77;
    EXPECT_EQ(registry.RegOpenKey(IRegistry::kCurrentUser, "Software\\Nobody", key), 2);
    EXPECT_EQ(key, 77);
    Long type = 0;
    Long size = 1;
    EXPECT_EQ(registry.RegQueryValueEx(77, "Text", type, nullptr, size), 6);
    EXPECT_EQ(registry.RegCloseKey(77), 6);
    ASSERT_EQ(registry.RegOpenKey(IRegistry::kCurrentUser, "Software\\Maker", key), 0);
    EXPECT_EQ(registry.RegQueryValueEx(key, "None", type, nullptr, size), 2);
    char little = '?';
    size = 1;
    EXPECT_EQ(registry.RegQueryValueEx(key, "Text", type, &little, size), 234);
    EXPECT_EQ(size, 6);
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
