// Reads the features of a layer, has their geometries placed, and counts what becomes of each.
#pragma once

#include <functional>
#include <optional>

#include "tiling/vector/FeaturesAhead.h"
#include "tiling/vector/GeometryCutter.h"
#include "tiling/vector/PieceWriter.h"
#include "tiling/vector/Placements.h"
#include "tiling/vector/TileSpool.h"
#include "tiling/vector/VectorSketch.h"
#include "tiling/vector/VectorSummary.h"

namespace orvo::tiling {

/// The number under which skipped features stand in the spool, as GeoJSON.
constexpr std::int64_t kSkippedRecords = -1;

class FeatureIntake {
  public:
    /// Places a geometry, and says what became of it. Failures that are shown meanwhile come as AddFailure.
    using Placing = std::function<Placement(const IncomingFeature::Part& part)>;

    struct Targets {
        PieceWriter* writer;     ///< null where no pieces are made
        TileSpool& spool;        ///< gets the features that stand in no tile
        VectorSketch* sketch;    ///< null for none
        Placements* placements;  ///< of a part of the grid, where no feature is skipped; null for the whole
    };

    FeatureIntake(gdal::VectorLayer& layer, VectorGrid& grid, const AddedFields& added, Targets targets,
                  Placing place)
        : layer_(layer), grid_(grid), added_(added), to_(targets), place_(std::move(place)) {}

    /// Reads all features, or as many as there are until the source breaks off or the run is interrupted.
    /// Where one reaches out of the grid, because the source states too small an extent, the tiles along the
    /// border take it in.
    /// @param tick called after each feature
    /// @return whether it came to the end, which may be where the source breaks off
    bool Read(int jobs, const std::function<bool()>& interrupted,
              const std::function<void(std::int64_t features)>& tick);
    /// A failure was shown while a feature was placed.
    void AddFailure(const std::string& failure) { failure_ = failure; }
    /// Adds what has been counted.
    void Report(VectorSummary& summary) const;

  private:
    void Place(const IncomingFeature& incoming);
    void PlacePart(const IncomingFeature::Part& part, const std::vector<unsigned char>& wkb);
    void ReachOut(const geos::Geometry& geometry);
    bool IsCut(const geos::Bounds& extent) const;
    void CountFeature(const OGRFeature& feature);
    void Skip(const OGRFeature& feature, const std::string& reason, const geos::Geometry* geometry);

    gdal::VectorLayer& layer_;
    VectorGrid& grid_;
    const AddedFields& added_;
    Targets to_;
    Placing place_;

    // Of the current feature.
    bool isPlaced_ = false;
    std::string failure_;  ///< shown, or thrown by the geometry
    std::string reason_;   ///< why some part of it stands nowhere
    std::shared_ptr<geos::Geometry> last_;

    std::int64_t in_ = 0, placed_ = 0, lost_ = 0, linearised_ = 0, surfaces_ = 0, measured_ = 0, partly_ = 0,
                 failed_ = 0;
    bool reachedOut_ = false;
    std::map<std::string, std::int64_t> skipped_;
    std::string complaint_;  ///< the source's first one about a geometry
    std::string brokenOff_;
};

}  // namespace orvo::tiling
