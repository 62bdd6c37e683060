#include "platform/fake/World.h"
#include "tests/contracts/Contract.h"

namespace orvo {

Subject MakeFakeSubject() {
    const auto world = fake::World::Make();
    const std::string source = "C:\\out\\source.png";
    world->PutFile(source, "image");
    world->languageOffset = 20000;
    world->registry["Software\\Maker"] = {{"Text", {IRegistry::kTypeString, std::string("/Grün\0", 7)}}};
    return {.system = "Fake",
            .services = world->MakePlatform(),
            .folder = "C:\\out",
            .source = source,
            .format = "PNG",
            .program = "converter",
            .registryKey = "Software\\Maker",
            .registryName = "Text",
            .openSource =
                [=] {
                    return fake::MakeRasterLayer(world, {source, 40, 30, 1000, 5000, {2, 3}, "PNG"});
                },
            .contentOf = [=](const std::string& path) { return world->files.at(fake::World::Normal(path)); },
            .makeReadOnly =
                [=](const std::string& path) { world->readOnlyFiles.insert(fake::World::Normal(path)); }};
}

}  // namespace orvo
