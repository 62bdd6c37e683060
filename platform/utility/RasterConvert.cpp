#include "platform/utility/RasterConvert.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/RuntimeError.h"
#include "platform/files/PartFile.h"
#include "platform/raster/ImageFormat.h"
#include "platform/utility/Converter.h"
#include "platform/utility/Disk.h"
#include "support/SystemPath.h"
#include "support/Text.h"

namespace orvo::utility {
namespace {

namespace fs = std::filesystem;

/// The extension of a path without its dot.
std::string ExtensionOf(const fs::path& path) {
    const std::string extension = PathText(path.extension());
    return extension.empty() ? extension : extension.substr(1);
}

/// Whether a text means nothing but itself to every program.
bool IsPlain(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
}

/// A hidden folder of this process alone. A program that works in it meets plain names only, however the
/// folders above it are called, and whatever it leaves there goes with the folder.
class WorkFolder {
  public:
    explicit WorkFolder(const fs::path& parent) {
        const std::error_code failed = CreateWorkFolder(parent, path_);
        if (!failed) return;
        path_.clear();
        reason_ = "cannot write into " + PathText(parent) + ": " + failed.message();
    }
    ~WorkFolder() {
        std::error_code ignored;
        if (!path_.empty()) fs::remove_all(path_, ignored);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const fs::path& Path() const { return path_; }
    /// Why it could not be made; empty where it stands.
    const std::string& Reason() const { return reason_; }

  private:
    fs::path path_;
    std::string reason_;
};

/// What went wrong with a program; empty where it ended well.
std::string Judge(const std::string& program, const ProcessResult& result, const fs::path& image) {
    std::string reason;
    std::error_code failed;
    if (!result.started) {
        reason = program + " could not be started";
    } else if (result.signal != 0) {
        reason = program + " was ended by signal " + std::to_string(result.signal) + " (" +
                 SignalName(result.signal) + ")";
    } else if (result.exitCode != 0) {
        reason = program + " failed with exit code " + std::to_string(result.exitCode);
    } else if (!fs::is_regular_file(fs::symlink_status(image, failed))) {
        reason = program + " wrote no image";
    } else if (fs::file_size(image, failed) == 0) {
        reason = program + " wrote an empty image";
    } else {
        return {};
    }
    return result.output.empty() ? reason : reason + ": " + result.output;
}

constexpr const char* kTaken = "a file of that name is there already";

/// Why a target may not be written; empty where its name is free. A finished tile is never replaced.
std::string Occupied(const std::string& target) {
    std::error_code failed;
    return fs::exists(fs::symlink_status(DiskPath(target), failed)) ? kTaken : "";
}

}  // namespace

struct RasterConvert::Job {
    const std::string& program;
    const std::string& sourceFile;
    Integer quality = raster::kDefaultQuality;
    WrittenImage image;
};

std::string RasterConvert::ExportRasterWindow(const std::shared_ptr<IRasterLayer>& layer,
                                              const std::string& targetFile, Integer quality,
                                              const std::shared_ptr<void>& /*reserved*/,
                                              const std::shared_ptr<IEnvelope>& envelope, Long width,
                                              Long height) {
    StopIfInterrupted();
    const IEnvelope& part = Object(envelope);
    const ImageExtent extent{part.XMin(), part.YMin(), part.XMax(), part.YMax(), width, height};
    const Request asked{targetFile, std::nullopt, extent};
    std::string reason = Occupied(targetFile);
    std::string path;
    if (reason.empty()) {
        path = rasters_->ExportRasterWindow(Object(layer), targetFile, quality, part, width, height, reason);
    }
    if (path.empty()) {
        settings_.onFailure(asked, reason);
        return path;
    }
    const std::string name = SystemPath(path);
    if (LCase(ExtensionOf(DiskPath(name))).starts_with("tif"))
        state_->exported.insert_or_assign(name, extent);
    Written({path, asked, std::nullopt, extent});
    return path;
}

bool RasterConvert::ConvertExtern(const std::string& program, const std::string& sourceFile,
                                  std::string& targetFile, Integer quality, const PixelWindow* window,
                                  bool /*wait*/) {
    if (program.empty()) return false;
    StopIfInterrupted();
    Job job{program, sourceFile, raster::QualityOf(quality), {}};
    job.image.path = targetFile;
    if (window != nullptr) job.image.window = *window;
    const auto extension = state_->reservations.OnlyExtension(targetFile);
    if (extension && !extension->empty()) job.image.path += "." + *extension;
    const auto exported = state_->exported.find(SystemPath(sourceFile));
    if (window == nullptr && exported != state_->exported.end()) job.image.extent = exported->second;
    job.image.asked = {job.image.path, job.image.window, job.image.extent};
    std::string reason = Occupied(job.image.path);
    if (reason.empty()) reason = Convert(job);
    if (!reason.empty()) {
        settings_.onFailure(job.image.asked, reason);
        return false;
    }
    Written(job.image);
    targetFile = std::move(job.image.path);
    return true;
}

std::string RasterConvert::Convert(Job& job) {
    const fs::path target = DiskPath(job.image.path);
    const std::string extension = ExtensionOf(target);
    if (extension.empty() || !IsPlain(extension)) return "the extension of the name gives no image format";
    const WorkFolder folder(target.has_parent_path() ? target.parent_path() : ".");
    if (!folder.Reason().empty()) return folder.Reason();
    std::string source;
    std::string reason = ProvideSource(job, PathText(folder.Path()), source);
    if (!reason.empty()) return reason;
    const std::string tile = "tile." + extension;
    const auto layout = rasters_->LayoutOf(PathText(folder.Path() / source));
    const auto arguments = ConverterArguments({job.program, "./" + source, "./" + tile, job.quality, layout});
    const ProcessResult result =
        runner_->Run(SystemPath(job.program), arguments, PathText(folder.Path()), settings_.interrupted);
    StopIfInterrupted();
    reason = Judge(job.program, result, folder.Path() / tile);
    if (reason.empty() && layout) {
        reason = rasters_->CheckImage(PathText(folder.Path() / tile), layout->width, layout->height);
        if (const auto at = reason.find(PathText(folder.Path())); at != std::string::npos)
            reason.replace(at, PathText(folder.Path()).size(), ".");
        if (!reason.empty()) reason = job.program + " wrote no image of the tile: " + reason;
    }
    if (!reason.empty()) return reason;
    const std::error_code failed = files::MoveNew(folder.Path() / tile, target);
    if (failed == std::errc::file_exists) return kTaken;
    return failed ? failed.message() : std::string();
}

/// Puts what is to be converted into the work folder, as `file`: the window as a TIFF, a whole image as a
/// link to it. The image then shows what the source shows.
std::string RasterConvert::ProvideSource(Job& job, const std::string& folder, std::string& file) {
    const std::string source = SystemPath(job.sourceFile);
    const fs::path image = DiskPath(source);
    std::string reason;
    if (job.image.window) {
        file = "source.tif";
        const bool cut = rasters_->CutWindow(source, *job.image.window, folder + "/" + file, reason);
        StopIfInterrupted();
        return cut || !reason.empty() ? reason : "the window could not be read";
    }
    std::error_code failed;
    if (!fs::exists(image, failed)) return "there is no image " + job.sourceFile;
    const std::string extension = ExtensionOf(image);
    file = extension.empty() || !IsPlain(extension) ? "source" : "source." + extension;
    fs::create_symlink(fs::absolute(image, failed), DiskPath(folder) / file, failed);
    if (failed) fs::copy_file(image, DiskPath(folder) / file, failed);
    return failed ? failed.message() : std::string();
}

/// Tells the host first: should that fail, the call can be made again.
void RasterConvert::Written(const WrittenImage& image) {
    settings_.onWritten(image);
    state_->reservations.Release(image.path);
}

void RasterConvert::StopIfInterrupted() const {
    if (settings_.interrupted()) throw RuntimeError(Fault::UserInterrupt);
}

}  // namespace orvo::utility
