#include "tiling/vector/FeaturesAhead.h"

#include <ogr_feature.h>

#include <limits>
#include <utility>

#include "platform/RuntimeError.h"
#include "tiling/vector/geometry/WorkLimit.h"

namespace orvo::tiling {
namespace {

constexpr std::size_t kBatch = 32;                          ///< features
constexpr std::size_t kBatchBytes = std::size_t{1} << 16U;  ///< of coordinates
constexpr int kMostBatches = 32;
constexpr std::size_t kMostBytes = std::size_t{4} << 20U;  ///< of coordinates that wait
constexpr std::size_t kMostOfOne = 2 * kMostBytes;         ///< beyond, a feature is served tile by tile

std::size_t BytesOf(const OGRFeature& feature) {
    const OGRGeometry* const geometry = feature.GetGeometryRef();
    return geometry != nullptr ? geometry->WkbSize() : 0;
}

}  // namespace

FeaturesAhead::FeaturesAhead(gdal::VectorLayer& layer, const VectorGrid& grid, int jobs)
    : layer_(layer),
      own_(grid.Own()),
      edges_(std::make_shared<geos::TileGrid>(grid.Edges())),
      ahead_((layer.Rewind(), std::numeric_limits<std::int64_t>::max()), ThreadsAhead(jobs),
             {kMostBatches, kMostBytes}, [this](std::int64_t) { return Begin(); }) {}

FeaturesAhead::Feature FeaturesAhead::Next(const std::function<bool()>& interrupted) {
    if (interrupted()) return nullptr;
    if (ahead_.Threads() == 0) {
        Feature incoming = Read();
        if (incoming) TakeApart(*incoming, nullptr);
        return incoming;
    }
    if (inBatch_ == batch_->features.size()) {
        if (batch_->failure) std::rethrow_exception(batch_->failure);
        auto next = ahead_.Take(nextBatch_++, interrupted);
        if (!next) return nullptr;
        batch_ = std::move(*next);
        inBatch_ = 0;
        if (batch_->features.empty()) return batch_->failure ? Next(interrupted) : nullptr;
    }
    return std::exchange(batch_->features[inBatch_++], nullptr);
}

/// Null at the end; a source that breaks off has come to its end.
FeaturesAhead::Feature FeaturesAhead::Read() {
    if (isAtEnd_) return nullptr;
    isAtEnd_ = true;
    auto incoming = std::make_shared<IncomingFeature>();
    incoming->feature = layer_.Next();
    if (!incoming->feature) return nullptr;
    incoming->complaint = layer_.Complaint();
    isAtEnd_ = false;
    return incoming;
}

/// @return bytes of coordinates
std::size_t FeaturesAhead::Fill(Batch& batch) {
    std::size_t size = 0;
    try {
        while (batch.features.size() < kBatch && size < kBatchBytes) {
            Feature incoming = Read();
            if (!incoming) break;
            const std::size_t bytes = BytesOf(*incoming->feature);
            size += bytes;
            FollowEdges(*incoming->feature);
            batch.edges.push_back(bytes > kMostOfOne ? nullptr : edges_);
            batch.features.push_back(std::move(incoming));
        }
    } catch (...) {
        batch.failure = std::current_exception();
    }
    return size;
}

void FeaturesAhead::FollowEdges(const OGRFeature& feature) {
    const OGRGeometry* const geometry = feature.GetGeometryRef();
    if (geometry == nullptr || geometry->IsEmpty() != 0) return;
    OGREnvelope e;
    geometry->getEnvelope(&e);
    const geos::Bounds extent{e.MinX, e.MinY, e.MaxX, e.MaxY};
    if (!geos::WholeOf(*edges_).Holds(extent))
        edges_ = std::make_shared<geos::TileGrid>(geos::ReachingOut(*edges_, extent));
}

FeaturesAhead::BatchAhead::Begun FeaturesAhead::Begin() {
    auto batch = std::make_shared<Batch>();
    const std::size_t size = Fill(*batch);
    return {[this, batch] {
                for (std::size_t i = 0; i < batch->features.size(); ++i)
                    TakeApart(*batch->features[i], batch->edges[i].get());
                return batch;
            },
            size};
}

void FeaturesAhead::TakeApart(IncomingFeature& incoming, const geos::TileGrid* edges) const {
    incoming.parts = gdal::PartsOf(incoming.feature->GetGeometryRef());
    const geos::WorkLimit limit([this] { return ahead_.IsStopped(); });
    for (const auto& wkb : incoming.parts.wkb) {
        IncomingFeature::Part& part = incoming.geometries.emplace_back();
        try {
            part.geometry = geos::Geometry::FromWkb(wkb);
            if (edges != nullptr) part.foretold = Foretell(part.geometry, *edges, own_);
        } catch (const RuntimeError& error) {
            if (!part.geometry) part.failure = error.Description();
        }
    }
}

}  // namespace orvo::tiling
