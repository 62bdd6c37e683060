#include "tiling/vector/VectorPlan.h"

#include <ogr_feature.h>

#include <utility>

#include "platform/gdal/Attributes.h"
#include "tiling/output/ReferenceSystem.h"
#include "tiling/output/SourceStamp.h"
#include "tiling/output/TileIndex.h"
#include "tiling/vector/VectorLayerSource.h"

namespace orvo::tiling {

VectorPlan::VectorPlan(const VectorJob& job)
    : job_(job), layer_(OpenLayer(job)), grid_(layer_, job.sizes, job.prefix) {
    if (job.part.parts > 0) grid_.TakePart(job.part);
    const ReferenceSystem system = NameReferenceSystem(layer_->SpatialReference());
    if (!system.notice.empty()) notices_.push_back(system.notice);
    system_ = system.name;
    added_ = FreeFields();
    writer_ = MakePieceWriter(job.format, *layer_, added_, system_);
    NoteGrid();
}

AddedFields VectorPlan::FreeFields() {
    const auto free = [&](const char* name) {
        std::string found = gdal::FreeFieldName(layer_->Definition(), name);
        if (found != name)
            notices_.push_back("the layer has a field \"" + std::string(name) + "\": ours is called \"" +
                               found + "\"");
        return found;
    };
    return {free("source_fid"), free("tile"), free("reason")};
}

void VectorPlan::NoteGrid() {
    if (layer_->Definition().GetGeomFieldCount() > 1)
        notices_.emplace_back("the layer has several columns of geometries: the first one is cut");
    const GridPlan& plan = grid_.Plan();
    if (plan.emptyColumns > 0 || plan.emptyRows > 0) {
        notices_.push_back("beyond the layer lie columns: " + std::to_string(plan.emptyColumns) + ", rows: " +
                           std::to_string(plan.emptyRows) + "; a tile's size goes up to whole map units");
    }
}

Json VectorPlan::JobAsJson() const {
    const TileSizes& sizes = job_.sizes;
    const GridPlan& plan = grid_.Plan();
    return {{"generator", kGenerator},
            {"command", "vector"},
            {"program", job_.program},
            {"inputs", {FullName(job_.input)}},
            {"source", SourceStamps(layer_->Files())},
            {"options",
             {{"layer", job_.layer},
              {"tile_width", sizes.width},
              {"tile_height", sizes.height},
              {"columns", sizes.columns},
              {"rows", sizes.rows},
              {"id", job_.prefix},
              {"format", job_.format},
              {"strict", job_.strict},
              {"preview", job_.preview}}},
            {"grid",
             {{"columns", plan.columns},
              {"rows", plan.rows},
              {"tile_width", plan.width},
              {"tile_height", plan.height}}},
            {"names", {{"extension", writer_->Extension()}}}};
}

VectorJob VectorJobFromJson(const Json& job) {
    const Json& o = job.at("options");
    const auto get = [&](const char* name, auto& value) { o.at(name).get_to(value); };
    VectorJob made;
    job.at("inputs").at(0).get_to(made.input);
    job.at("program").get_to(made.program);
    get("layer", made.layer);
    get("tile_width", made.sizes.width);
    get("tile_height", made.sizes.height);
    get("columns", made.sizes.columns);
    get("rows", made.sizes.rows);
    get("id", made.prefix);
    get("format", made.format);
    get("strict", made.strict);
    get("preview", made.preview);
    return made;
}

}  // namespace orvo::tiling
