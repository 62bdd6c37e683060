// The fake platform's utility library: free names, conversion and export as texts in the world's files.
#include <algorithm>

#include "platform/fake/Objects.h"

namespace orvo::fake {
namespace {

constexpr const char* kSideFiles[] = {".aux", ".rrd"};

std::string WithoutExtension(const std::string& path) {
    return path.substr(0, path.rfind('.'));
}

bool HasExtension(const std::string& path) {
    const auto dot = path.rfind('.');
    return dot != std::string::npos && path.find_first_of("\\/", dot) == std::string::npos;
}

bool HasFolder(const World& world, std::string folder) {
    while (folder.size() > 1 && (folder.ends_with('\\') || folder.ends_with('/'))) folder.pop_back();
    return world.folders.contains(World::Normal(folder));
}

std::string Sizes(Long width, Long height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

}  // namespace

Integer UtilTools::GetLanguageOffset() {
    world_->Call("UtilTools.GetLanguageOffset");
    return world_->languageOffset;
}

std::string UtilTools::GetFreeFileName(const std::string& folder, const std::string& baseName,
                                       const std::vector<std::string>& extensions) {
    world_->Call("UtilTools.GetFreeFileName");
    if (!folder.empty() && !HasFolder(*world_, folder)) throw RuntimeError(Fault::PathNotFound, folder);
    const bool isOpenFolder = folder.empty() || folder.ends_with('\\') || folder.ends_with('/');
    const std::string stem = folder + (isOpenFolder ? "" : "\\") + baseName + "_";
    int& number = lastNumber_[stem];
    std::string name;
    do {
        name = stem + std::to_string(++number);
        ++world_->looksAtDisk;
    } while (IsTaken(name, extensions));
    world_->reservedNames.insert(World::Normal(name));
    if (extensions.size() == 1) world_->reservedExtension[name] = extensions.front();
    return name;
}

bool UtilTools::IsTaken(const std::string& name, const std::vector<std::string>& extensions) {
    if (world_->reservedNames.contains(World::Normal(name))) return true;
    return std::ranges::any_of(extensions,
                               [&](const std::string& e) { return world_->HasFile(name + "." + e); });
}

std::string RasterConvert::ExportRasterWindow(const std::shared_ptr<IRasterLayer>& layer,
                                              const std::string& targetFile, Integer /*quality*/,
                                              const std::shared_ptr<void>& /*reserved*/,
                                              const std::shared_ptr<IEnvelope>& envelope, Long width,
                                              Long height) {
    world_->Call("RasterConvert.ExportRasterWindow");
    const std::string what = "export of " + Object(layer).FilePath() + " at " +
                             std::to_string(Object(envelope).XMin()) + " as " + Sizes(width, height);
    if (world_->exportWindow == Conversion::Fails || world_->HasFile(targetFile)) return {};
    std::string path = world_->exportGivesTiff ? WithoutExtension(targetFile) + ".tif" : targetFile;
    world_->exportedSizes.emplace_back(width, height);
    world_->PutFile(path, what);
    if (world_->exportGivesTiff) world_->PutFile(WithoutExtension(path) + ".tfw", "world file");
    for (const char* suffix : kSideFiles) world_->PutFile(WithoutExtension(path) + suffix, "side file");
    world_->PutFile(path + ".aux.xml", "side file");
    return path;
}

bool RasterConvert::ConvertExtern(const std::string& program, const std::string& sourceFile,
                                  std::string& targetFile, Integer /*quality*/, const PixelWindow* window,
                                  bool /*wait*/) {
    world_->Call("RasterConvert.ConvertExtern");
    if (program.empty() || world_->convertExtern == Conversion::Fails) return false;
    if (!world_->HasFile(sourceFile)) return false;
    std::string path = targetFile;
    const auto reserved = world_->reservedExtension.find(targetFile);
    if (!HasExtension(path) && reserved != world_->reservedExtension.end()) path += "." + reserved->second;
    if (world_->HasFile(path)) return false;
    if (window != nullptr) world_->convertedWindows.push_back(*window);
    world_->PutFile(path, "conversion of " + sourceFile);
    targetFile = path;
    return true;
}

void StatusDisplay::ShowMessage(const std::string& text) {
    world_->Call("StatusDisplay.ShowMessage");
    shown.push_back({text, -1, false});
}

void StatusDisplay::ShowProgress(const std::string& text, Long maxValue, bool step) {
    world_->Call("StatusDisplay.ShowProgress");
    shown.push_back({text, maxValue, step});
}

}  // namespace orvo::fake
