// Reading rows of tiles in one go.
#pragma once

#include <vector>

#include "platform/gdal/RasterLayer.h"
#include "platform/gdal/ReadWindow.h"

namespace orvo::gdal {

/// Reads windows of one raster. Where exact windows follow each other from left to right, as tiles do, the
/// cells to their right are read along and kept, up to 32 MB: one large read costs a fraction of many small
/// ones.
class ReadAhead {
  public:
    /// Reads pixel by pixel, bands interleaved, tightly packed. Fails like ReadWindow, also where only cells
    /// that were to be read along cannot be read: then Stop, and read again.
    void Read(RasterLayer& layer, std::span<const int> bands, GDALDataType type, const TileWindow& window,
              Resample resample, unsigned char* target);
    /// Reads nothing along from now on, and forgets what was.
    void Stop();
    bool IsStopped() const { return stopped_; }

  private:
    struct Strip {
        std::vector<int> bands;
        GDALDataType type = GDT_Unknown;
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        std::vector<unsigned char> cells;
    };

    bool Holds(const Strip& wanted) const;
    bool Follows(const TileWindow& window, int rasterColumns);
    bool Fetch(RasterLayer& layer, Strip wanted);

    bool stopped_ = false;
    Strip strip_;
    // The row of tiles that is being read, as far as it came; and how far the one before it reached.
    double top_ = -1;
    double right_ = 0;
    double reach_ = 0;
};

}  // namespace orvo::gdal
