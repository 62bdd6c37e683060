#include "tiling/vector/FeatureIntake.h"

#include <ogr_feature.h>

#include <utility>

#include "platform/RuntimeError.h"
#include "platform/gdal/Attributes.h"
#include "tiling/vector/geometry/WorkLimit.h"

namespace orvo::tiling {
namespace {

const char* const kCoveredOnly = "it covers whole tiles only, which --strict leaves out";
const char* const kUnreadable = "its geometry cannot be read";
const char* const kNothing = "clipping gave nothing";

}  // namespace

bool FeatureIntake::Read(int jobs, const std::function<bool()>& interrupted,
                         const std::function<void(std::int64_t features)>& tick) {
    const geos::WorkLimit limit(interrupted);
    try {
        FeaturesAhead ahead(layer_, grid_, jobs);
        while (const auto incoming = ahead.Next(interrupted)) {
            ++in_;
            Place(*incoming);
            tick(in_);
        }
    } catch (const RuntimeError& error) {
        brokenOff_ = error.Description();
    }
    return !interrupted();
}

void FeatureIntake::Place(const IncomingFeature& incoming) {
    const gdal::FeatureParts& parts = incoming.parts;
    const OGRFeature& feature = *incoming.feature;
    if (parts.wkb.empty()) {
        const bool damaged = !incoming.complaint.empty();
        if (damaged && complaint_.empty()) complaint_ = incoming.complaint;
        Skip(feature, damaged ? kUnreadable : parts.reason, nullptr);
        lost_ += parts.holdsNothing && !damaged ? 0 : 1;
        return;
    }
    linearised_ += parts.linearised ? 1 : 0;
    surfaces_ += parts.surfaces ? 1 : 0;
    measured_ += parts.measures ? 1 : 0;
    if (to_.writer != nullptr) to_.writer->Begin(feature);
    isPlaced_ = false;
    failure_.clear();
    reason_ = parts.reason;
    last_.reset();
    for (std::size_t i = 0; i < parts.wkb.size(); ++i) PlacePart(incoming.geometries[i], parts.wkb[i]);
    CountFeature(feature);
}

void FeatureIntake::PlacePart(const IncomingFeature::Part& part, const std::vector<unsigned char>& wkb) {
    last_ = part.geometry;
    if (!last_) {
        reason_ = part.failure;
        return;
    }
    ReachOut(*last_);
    if (to_.writer != nullptr) to_.writer->Expect(*last_, wkb, IsCut(last_->Extent()));
    std::string earlier = std::exchange(failure_, "");
    Placement placement = place_(part);
    if (placement.failure.empty()) placement.failure = failure_;
    failure_ = placement.failure.empty() ? std::move(earlier) : placement.failure;
    isPlaced_ = isPlaced_ || placement.isPlaced;
    if (!placement.isPlaced && !placement.isLeftOut) reason_ = kNothing;
    if (to_.placements != nullptr) to_.placements->Add(placement);
    if (to_.sketch != nullptr) to_.sketch->Add(last_->Coordinates());
}

/// What lies in the grid already is cut alike before and after.
void FeatureIntake::ReachOut(const geos::Geometry& geometry) {
    if (geometry.IsEmpty() || grid_.Whole().Holds(geometry.Extent())) return;
    grid_.ReachOut(geometry.Extent());
    reachedOut_ = true;
}

bool FeatureIntake::IsCut(const geos::Bounds& extent) const {
    const auto &columns = grid_.Edges().columns, &rows = grid_.Edges().rows;
    return columns[IntervalOf(columns, extent.xMin)].high < extent.xMax ||
           rows[IntervalOf(rows, extent.yMin)].high < extent.yMax;
}

void FeatureIntake::CountFeature(const OGRFeature& feature) {
    if (!failure_.empty()) reason_ = failure_;
    if (isPlaced_) {
        ++placed_;
        partly_ += reason_.empty() || to_.placements != nullptr ? 0 : 1;
    }
    if (to_.placements != nullptr) failed_ += failure_.empty() ? 0 : 1;
    if (isPlaced_ || to_.placements != nullptr) return;
    if (reason_.empty()) return Skip(feature, kCoveredOnly, last_.get());
    ++lost_;
    Skip(feature, reason_, last_.get());
}

void FeatureIntake::Skip(const OGRFeature& feature, const std::string& reason,
                         const geos::Geometry* geometry) {
    if (to_.placements != nullptr) return;  // the whole run skips it
    ++skipped_[reason];
    std::string record = FeatureHead(feature, added_.id) + gdal::JsonText(added_.reason) + ':' +
                         gdal::JsonText(reason) + "},\"geometry\":";
    if (geometry != nullptr)
        AppendGeometry(record, geometry->Coordinates());
    else
        record += "null";
    to_.spool.Add(kSkippedRecords, record + '}');
}

void FeatureIntake::Report(VectorSummary& summary) const {
    summary.featuresIn = in_;
    summary.placed = placed_;
    summary.skipped = skipped_;
    summary.lost = lost_;
    const auto features = [](std::int64_t count, const std::string& what) {
        return std::to_string(count) + (count == 1 ? " feature " : " features ") + what;
    };
    const auto note = [&](std::int64_t count, const std::string& what) {
        if (count > 0) summary.notices.push_back(features(count, what));
    };
    if (reachedOut_) {
        summary.notices.emplace_back(
            "the layer reaches out of the extent that the source states for it; the tiles along the border "
            "take it in");
    }
    note(linearised_, "had curves, which became lines of short segments");
    note(surfaces_, "had triangles or faces, which became areas");
    note(measured_, "had measures, which are not kept");
    note(layer_.MendedCount(), "had texts that are not UTF-8, first in the field \"" + layer_.MendedField() +
                                   "\": what cannot be read is U+FFFD now; bring the source to UTF-8 first");
    if (summary.coveredLeftOut > 0) {
        summary.notices.push_back(
            std::to_string(summary.coveredLeftOut) +
            " times an area got nothing for a tile that it covers, as --strict asks for");
    }
    if (!complaint_.empty()) summary.errors.push_back("the source is damaged: " + complaint_);
    if (!brokenOff_.empty()) summary.errors.push_back(brokenOff_);
    if (failed_ > 0)
        summary.errors.push_back(features(failed_, "met failures; the merge tells what became of them"));
    if (partly_ > 0) summary.errors.push_back(features(partly_, "placed, but not with all parts"));
}

}  // namespace orvo::tiling
