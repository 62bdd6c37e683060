#include "tiling/vector/FeatureIntake.h"

#include <ogr_feature.h>

#include "platform/RuntimeError.h"
#include "platform/gdal/Attributes.h"
#include "platform/gdal/FeatureParts.h"
#include "tiling/vector/geometry/WorkLimit.h"

namespace orvo::tiling {
namespace {

const char* const kCoveredOnly = "it covers whole tiles only, which --strict leaves out";
const char* const kUnreadable = "its geometry cannot be read";
const char* const kNothing = "clipping gave nothing";

}  // namespace

FeatureIntake::FeatureIntake(gdal::VectorLayer& layer, VectorGrid& grid, bool strict,
                             const AddedFields& added, Targets targets)
    : layer_(layer),
      grid_(grid),
      added_(added),
      to_(targets),
      cutter_(grid, strict, [this](Long column, Long row, const geos::Geometry& piece) {
          const std::int64_t number = std::int64_t{row - 1} * grid_.Plan().columns + column - 1;
          to_.spool.Add(number, to_.writer.Record(grid_.NameOf(column, row), piece));
      }) {}

void FeatureIntake::Read(const std::function<bool()>& interrupted,
                         const std::function<void(std::int64_t features)>& tick) {
    layer_.Rewind();
    const geos::WorkLimit limit(interrupted);
    try {
        while (!interrupted()) {
            const auto feature = layer_.Next();
            if (!feature) break;
            ++in_;
            Place(*feature);
            tick(in_);
        }
    } catch (const RuntimeError& error) {
        brokenOff_ = error.Description();
    }
}

void FeatureIntake::Place(const OGRFeature& feature) {
    const gdal::FeatureParts parts = gdal::PartsOf(feature.GetGeometryRef());
    if (parts.wkb.empty()) {
        const bool damaged = !layer_.Complaint().empty();
        if (damaged && complaint_.empty()) complaint_ = layer_.Complaint();
        Skip(feature, damaged ? kUnreadable : parts.reason, nullptr);
        lost_ += parts.holdsNothing && !damaged ? 0 : 1;
        return;
    }
    linearised_ += parts.linearised ? 1 : 0;
    surfaces_ += parts.surfaces ? 1 : 0;
    measured_ += parts.measures ? 1 : 0;
    to_.writer.Begin(feature);
    pieces_ = 0;
    failure_.clear();
    reason_ = parts.reason;
    last_.reset();
    for (const auto& wkb : parts.wkb) CutPart(wkb);
    CountFeature(feature);
}

void FeatureIntake::CutPart(const std::vector<unsigned char>& wkb) {
    try {
        last_ = geos::Geometry::FromWkb(wkb);
    } catch (const RuntimeError& error) {
        reason_ = error.Description();
        return;
    }
    // What lies in the grid already is cut alike before and after.
    if (!last_->IsEmpty() && !grid_.Whole().Holds(last_->Extent())) {
        grid_.ReachOut(last_->Extent());
        reachedOut_ = true;
    }
    const std::int64_t coveredBefore = cutter_.CoveredLeftOut();
    try {
        cutter_.Cut(last_);
        if (!cutter_.Refusal().empty()) failure_ = cutter_.Refusal();
    } catch (const RuntimeError& error) {
        failure_ = error.Description();
    }
    pieces_ += cutter_.Placed();
    const bool coversOnly = cutter_.CoveredLeftOut() > coveredBefore;
    if (cutter_.Placed() == 0 && !coversOnly) reason_ = kNothing;
    if (to_.sketch != nullptr) to_.sketch->Add(last_->Coordinates());
}

void FeatureIntake::CountFeature(const OGRFeature& feature) {
    if (!failure_.empty()) reason_ = failure_;
    if (pieces_ > 0) {
        ++placed_;
        partly_ += reason_.empty() ? 0 : 1;
        return;
    }
    if (reason_.empty()) return Skip(feature, kCoveredOnly, last_.get());
    ++lost_;
    Skip(feature, reason_, last_.get());
}

void FeatureIntake::Skip(const OGRFeature& feature, const std::string& reason,
                         const geos::Geometry* geometry) {
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
    summary.coveredLeftOut = cutter_.CoveredLeftOut();
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
    if (cutter_.CoveredLeftOut() > 0) {
        summary.notices.push_back(
            std::to_string(cutter_.CoveredLeftOut()) +
            " times an area got nothing for a tile that it covers, as --strict asks for");
    }
    if (!complaint_.empty()) summary.errors.push_back("the source is damaged: " + complaint_);
    if (!brokenOff_.empty()) summary.errors.push_back(brokenOff_);
    if (partly_ > 0) summary.errors.push_back(features(partly_, "placed, but not with all parts"));
}

}  // namespace orvo::tiling
