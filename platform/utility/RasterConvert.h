// The utility library's export and conversion of images.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/Process.h"
#include "platform/RasterIO.h"
#include "platform/utility/SharedState.h"

namespace orvo::utility {

/// Both services tell the host what they wrote and what failed, except for a call without a program.
class RasterConvert final : public IRasterConvert {
  public:
    RasterConvert(std::shared_ptr<SharedState> state, Settings settings, std::shared_ptr<IRasterIO> rasters,
                  std::shared_ptr<IProcessRunner> runner)
        : state_(std::move(state)),
          settings_(std::move(settings)),
          rasters_(std::move(rasters)),
          runner_(std::move(runner)) {}

    std::string ExportRasterWindow(const std::shared_ptr<IRasterLayer>& layer, const std::string& targetFile,
                                   Integer quality, const std::shared_ptr<void>& reserved,
                                   const std::shared_ptr<IEnvelope>& envelope, Long width,
                                   Long height) override;

    /// Works in a hidden folder beside the target, which is gone at the end. A target without extension gets
    /// the one for which its name was reserved. Fails with 18 once the process is interrupted.
    bool ConvertExtern(const std::string& program, const std::string& sourceFile, std::string& targetFile,
                       Integer quality, const PixelWindow* window, bool wait) override;

  private:
    struct Job;
    /// Writes the job's target; why that failed, empty on success.
    std::string Convert(Job& job);
    std::string ProvideSource(Job& job, const std::string& folder, std::string& file);
    void Written(const WrittenImage& image);
    void StopIfInterrupted() const;

    std::shared_ptr<SharedState> state_;
    Settings settings_;
    std::shared_ptr<IRasterIO> rasters_;
    std::shared_ptr<IProcessRunner> runner_;
};

}  // namespace orvo::utility
