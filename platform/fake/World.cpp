#include "platform/fake/World.h"

#include <algorithm>

#include "platform/fake/Objects.h"

namespace orvo::fake {
namespace {
constexpr Long kInjectedFault = 31000;

bool ServesTheDialog(const std::string& call) {
    return call.starts_with("Desktop.") || call.starts_with("TextFiles.") || call.starts_with("Clock.") ||
           call.starts_with("OperatingSystem.");
}

}  // namespace

platform::Platform World::MakePlatform() {
    const auto world = shared_from_this();
    platform::Platform made;
    made.newEnvelope = [world] {
        world->Call("New Envelope");
        return std::make_shared<Envelope>(world);
    };
    made.newDictionary = [world] {
        world->Call("New Dictionary");
        return std::make_shared<Dictionary>(world);
    };
    made.newFileSystemObject = [world] {
        world->Call("New FileSystemObject");
        return std::make_shared<FileSystemObject>(world);
    };
    made.newUtilTools = [world] {
        world->Call("New UtilTools");
        return std::make_shared<UtilTools>(world);
    };
    made.newRasterConvert = [world] {
        world->Call("New RasterConvert");
        return std::make_shared<RasterConvert>(world);
    };
    made.newRasterWorkspaceFactory = [world] {
        world->Call("New RasterWorkspaceFactory");
        return std::make_shared<RasterWorkspaceFactory>(world);
    };
    made.registry = std::make_shared<Registry>(world);
    made.clock = std::make_shared<Clock>(world);
    made.operatingSystem = std::make_shared<OperatingSystem>(world);
    made.textFiles = std::make_shared<TextFiles>(world);
    made.desktop = std::make_shared<Desktop>(world);
    return made;
}

void World::FailCall(long n, Lasting lasting) {
    calls_ = 0;
    failAt_ = n;
    lasting_ = lasting;
    failedCall_.clear();
}

void World::Call(const std::string& name) {
    ++calls_;
    if (failAt_ == 0 || calls_ < failAt_) return;
    if (calls_ > failAt_ && (lasting_ == Lasting::Once || ServesTheDialog(name))) return;
    if (failedCall_.empty()) failedCall_ = name;
    throw RuntimeError(kInjectedFault, "Injected failure of " + name);
}

std::string World::Normal(std::string path) {
    std::ranges::replace(path, '/', '\\');
    return path;
}

}  // namespace orvo::fake
