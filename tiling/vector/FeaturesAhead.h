// The features of a layer, with what is worked out of them before they are placed.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/gdal/FeatureParts.h"
#include "platform/gdal/VectorLayer.h"
#include "tiling/Ahead.h"
#include "tiling/vector/Foretelling.h"
#include "tiling/vector/VectorGrid.h"

namespace orvo::tiling {

/// A feature as it was read.
struct IncomingFeature {
    struct Part {
        std::shared_ptr<geos::Geometry> geometry;  ///< null where it cannot be read
        std::string failure;                       ///< why
        Foretold foretold;
    };
    std::unique_ptr<OGRFeature> feature;
    std::string complaint;  ///< the source's, while it gave the feature; empty for none
    gdal::FeatureParts parts;
    std::vector<Part> geometries;  ///< by the parts' WKB
};

/// Reads a layer once, in its order. The next features are read, taken apart and related to the tiles on
/// several threads, some at a time; at most 1024, and no more while their coordinates take 4 MB, which become
/// about 40 MB of shapes and pieces.
class FeaturesAhead {
  public:
    /// The layer must outlive this object; nobody else reads the layer meanwhile.
    /// @param jobs threads, 1 for none but the caller's; 0 for one for each core
    FeaturesAhead(gdal::VectorLayer& layer, const VectorGrid& grid, int jobs);

    /// The next feature; null at the end, and once `interrupted` holds. Fails with number 57 where the source
    /// breaks off.
    std::shared_ptr<IncomingFeature> Next(const std::function<bool()>& interrupted);

  private:
    using Feature = std::shared_ptr<IncomingFeature>;
    /// Neighbours in the layer. Small features would wait for each other longer than they take.
    struct Batch {
        std::vector<Feature> features;
        std::vector<std::shared_ptr<const geos::TileGrid>> edges;  ///< for each; null for none
        std::exception_ptr failure;                                ///< behind the last one
    };
    using BatchAhead = Ahead<std::shared_ptr<Batch>>;

    Feature Read();
    std::size_t Fill(Batch& batch);
    void FollowEdges(const OGRFeature& feature);
    BatchAhead::Begun Begin();
    /// @param edges to foretell for; null for none
    void TakeApart(IncomingFeature& incoming, const geos::TileGrid* edges) const;

    gdal::VectorLayer& layer_;
    const geos::TileSpan own_;
    /// As they will be when the features come to be placed, those before having reached out of the grid.
    std::shared_ptr<const geos::TileGrid> edges_;
    bool isAtEnd_ = false;
    std::shared_ptr<Batch> batch_ = std::make_shared<Batch>();  ///< that is handed out
    std::size_t inBatch_ = 0;
    std::int64_t nextBatch_ = 0;
    BatchAhead ahead_;
};

}  // namespace orvo::tiling
