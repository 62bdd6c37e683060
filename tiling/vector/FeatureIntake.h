// Reads the features of a layer and gives their pieces to the tiles.
#pragma once

#include <optional>

#include "platform/gdal/VectorLayer.h"
#include "tiling/vector/GeometryCutter.h"
#include "tiling/vector/PieceWriter.h"
#include "tiling/vector/TileSpool.h"
#include "tiling/vector/VectorSketch.h"
#include "tiling/vector/VectorSummary.h"

namespace orvo::tiling {

/// The number under which skipped features stand in the spool, as GeoJSON.
constexpr std::int64_t kSkippedRecords = -1;

class FeatureIntake {
  public:
    struct Targets {
        PieceWriter& writer;
        TileSpool& spool;
        VectorSketch* sketch;  ///< null for none
    };

    FeatureIntake(gdal::VectorLayer& layer, VectorGrid& grid, bool strict, const AddedFields& added,
                  Targets targets);

    /// Reads all features, or as many as there are until the source breaks off or the run is interrupted.
    /// Where one reaches out of the grid, because the source states too small an extent, the tiles along the
    /// border take it in.
    /// @param tick called after each feature
    void Read(const std::function<bool()>& interrupted,
              const std::function<void(std::int64_t features)>& tick);
    /// A failure was shown while a feature was placed.
    void AddFailure(const std::string& failure) { failure_ = failure; }
    /// Adds what has been counted.
    void Report(VectorSummary& summary) const;

  private:
    void Place(const OGRFeature& feature);
    void CutPart(const std::vector<unsigned char>& wkb);
    void CountFeature(const OGRFeature& feature);
    void Skip(const OGRFeature& feature, const std::string& reason, const geos::Geometry* geometry);

    gdal::VectorLayer& layer_;
    VectorGrid& grid_;
    const AddedFields& added_;
    Targets to_;
    GeometryCutter cutter_;

    // Of the current feature.
    std::size_t pieces_ = 0;
    std::string failure_;  ///< shown, or thrown by the geometry
    std::string reason_;   ///< why some part of it stands nowhere
    std::shared_ptr<geos::Geometry> last_;

    std::int64_t in_ = 0, placed_ = 0, lost_ = 0, linearised_ = 0, surfaces_ = 0, measured_ = 0, partly_ = 0;
    bool reachedOut_ = false;
    std::map<std::string, std::int64_t> skipped_;
    std::string complaint_;  ///< the source's first one about a geometry
    std::string brokenOff_;
};

}  // namespace orvo::tiling
