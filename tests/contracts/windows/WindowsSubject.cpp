#include <fstream>

#include "platform/windows/Platform.h"
#include "platform/windows/imaging/Image.h"
#include "platform/windows/imaging/RasterFile.h"
#include "support/SystemPath.h"
#include "tests/adapters/TempFolder.h"
#include "tests/contracts/Contract.h"
#include "tests/windows/Self.h"

namespace orvo {
namespace {

constexpr const wchar_t* kKey = L"Software\\OrvoContract";

struct World {
    TempFolder folder{"Orvo Käse ☕"};
    World() {
        ::RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"Text", REG_SZ, L"/Gr\x00FCn", 12);
        ::SetEnvironmentVariableW(windows::kLanguageVariable, L"fr");
    }
    ~World() {
        ::RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
        ::SetEnvironmentVariableW(windows::kLanguageVariable, nullptr);
    }
    World(const World&) = delete;
    World& operator=(const World&) = delete;
};

}  // namespace

Subject MakeSystemSubject() {
    auto world = std::make_shared<World>();
    const std::string source = world->folder / "source.png";
    windows::WriteImage(source, windows::ImageFormat::Png, {windows::Pixels::Kind::Bgr, 40, 30}, 0);
    world->folder.Put("source.pgw", "2\n0\n0\n-3\n1001\n4998.5\n");
    return {.system = "Windows",
            .services = windows::MakePlatform(),
            .folder = world->folder.Path(),
            .source = source,
            .format = "PNG",
            .program = Self(),
            .registryKey = "Software\\OrvoContract",
            .registryName = "Text",
            .openSource = [=] { return windows::OpenRasterFile(source); },
            .contentOf = ReadFile,
            .makeReadOnly =
                [](const std::string& path) {
                    std::filesystem::permissions(DiskPath(path), std::filesystem::perms::owner_read);
                },
            .world = world};
}

}  // namespace orvo
