#include "host/FeatureIntake.h"

#include <ogr_feature.h>

#include "host/Interrupt.h"
#include "platform/RuntimeError.h"
#include "platform/gdal/Attributes.h"
#include "platform/gdal/FeatureParts.h"

namespace orvo::host {
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

void FeatureIntake::Read(const std::function<void(std::int64_t features)>& tick) {
    layer_.Rewind();
    try {
        while (!Interrupted()) {
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
    const std::int64_t coveredBefore = cutter_.CoveredLeftOut();
    pieces_ = 0;
    failure_.clear();
    reason_ = parts.reason;
    last_.reset();
    CutParts(parts.wkb);
    coveredOnly_ = pieces_ == 0 && cutter_.CoveredLeftOut() > coveredBefore;
    Settle(feature);
}

void FeatureIntake::CutParts(const std::vector<std::vector<unsigned char>>& parts) {
    for (const auto& wkb : parts) {
        std::shared_ptr<geos::Geometry> geometry;
        try {
            geometry = geos::Geometry::FromWkb(wkb);
        } catch (const RuntimeError& error) {
            reason_ = error.Description();
            continue;
        }
        // What lies in the grid already is cut alike before and after.
        if (!geometry->IsEmpty() && !grid_.Whole().Holds(geometry->Extent())) {
            grid_.ReachOut(geometry->Extent());
            ++reachedOut_;
        }
        std::size_t pieces = 0;
        try {
            pieces = cutter_.Cut(geometry);
        } catch (const RuntimeError& error) {
            pieces = cutter_.Placed();
            failure_ = error.Description();
        }
        pieces_ += pieces;
        if (pieces == 0) reason_ = kNothing;
        if (to_.sketch != nullptr) to_.sketch->Add(geometry->Coordinates());
        last_ = std::move(geometry);
    }
}

void FeatureIntake::Settle(const OGRFeature& feature) {
    if (!failure_.empty()) reason_ = failure_;
    if (pieces_ > 0) {
        ++placed_;
        partly_ += reason_.empty() ? 0 : 1;
        return;
    }
    if (coveredOnly_ && failure_.empty()) return Skip(feature, kCoveredOnly, last_.get());
    ++lost_;
    Skip(feature, reason_, last_.get());
}

void FeatureIntake::Skip(const OGRFeature& feature, const std::string& reason,
                         const geos::Geometry* geometry) {
    ++skipped_[reason];
    std::string record = ",\n{\"type\":\"Feature\",\"properties\":{" + gdal::JsonMembers(feature);
    if (feature.GetFieldCount() > 0) record += ',';
    record += gdal::JsonText(added_.id) + ':' + std::to_string(feature.GetFID()) + ',' +
              gdal::JsonText(added_.reason) + ':' + gdal::JsonText(reason) + "},\"geometry\":";
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
    const auto note = [&](std::int64_t count, const std::string& what) {
        if (count > 0) summary.notices.push_back(std::to_string(count) + " features " + what);
    };
    note(reachedOut_,
         "reach out of the extent that the source states for its layer; the tiles along the border "
         "take them in");
    note(linearised_, "had curves, which became lines of short segments");
    note(surfaces_, "had triangles or faces, which became areas");
    note(measured_, "had measures, which are not kept");

    if (cutter_.CoveredLeftOut() > 0) {
        summary.notices.push_back(
            std::to_string(cutter_.CoveredLeftOut()) +
            " times an area got nothing for a tile that it covers, as --strict asks for");
    }
    if (!complaint_.empty()) summary.errors.push_back("the source is damaged: " + complaint_);
    if (!brokenOff_.empty()) summary.errors.push_back(brokenOff_);
    if (partly_ > 0)
        summary.errors.push_back(std::to_string(partly_) +
                                 " features stand in tiles, but not all of their parts");
}

}  // namespace orvo::host
