// A raster job that was found good: source, format, grid and names, before anything is written.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tiling/output/JsonText.h"
#include "tiling/raster/RasterGrid.h"
#include "tiling/raster/TileAccount.h"
#include "tiling/raster/TileMaker.h"

namespace orvo::tiling {

/// The job that job.json tells of. Fails with Json's exceptions where it tells of none.
RasterJob JobFromJson(const Json& job);

class RasterPlan {
  public:
    /// Opens the source and tries the format. The job must outlive the plan. Fails like CutRaster.
    explicit RasterPlan(const RasterJob& job);

    gdal::RasterLayer& Layer() const { return *layer_; }
    const RasterGrid& Grid() const { return grid_; }
    TileMaker& Maker() const { return *maker_; }
    std::shared_ptr<TileMaker> SharedMaker() const { return maker_; }
    TileAccount& Account() { return account_; }

    /// Everything on the disk that the source is read from.
    std::vector<std::string> SourceFiles() const;
    std::vector<std::string> Notices() const;
    /// What job.json says: enough to know whether another run makes the same files.
    Json JobAsJson() const;
    /// Grid, names and counts, for people and programs.
    std::string AsJson(const std::string& outdir) const;

  private:
    const RasterJob& job_;
    std::shared_ptr<gdal::RasterLayer> layer_;
    RasterGrid grid_;
    std::shared_ptr<TileMaker> maker_;
    TileAccount account_;
};

}  // namespace orvo::tiling
