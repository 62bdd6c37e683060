#include "platform/linux/Platform.h"
#include "support/SystemPath.h"
#include "tests/Variable.h"
#include "tests/adapters/GdalRasters.h"
#include "tests/contracts/Contract.h"

namespace orvo {
namespace {

struct World {
    TempFolder folder{"-q 'Ö\" %d:[0]"};
    Variable dataFolder{"XDG_DATA_HOME", "/Grün"};
};

}  // namespace

Subject MakeSystemSubject() {
    auto world = std::make_shared<World>();
    const std::string source = world->folder / "source.tif";
    WriteRaster(source, {.width = 40, .height = 30});
    linux_platform::Options options;
    options.services.languageOffset = 20000;
    return {.system = "Linux",
            .services = linux_platform::MakePlatform(std::move(options)),
            .folder = world->folder.Path(),
            .source = source,
            .format = "GTiff",
            .program = world->folder.PutScript("copy", "cat \"$1\" > \"$2\""),
            .registryKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders",
            .registryName = "AppData",
            .openSource = [=] { return gdal::OpenRasterLayer(source); },
            .contentOf = [](const std::string& path) { return ReadFile(SystemPath(path)); },
            .makeReadOnly =
                [](const std::string& path) {
                    std::filesystem::permissions(SystemPath(path), std::filesystem::perms::owner_read);
                },
            .world = world};
}

}  // namespace orvo
