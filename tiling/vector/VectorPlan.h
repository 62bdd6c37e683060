// What a vector run will do, known before it does it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tiling/output/JsonText.h"
#include "tiling/vector/PieceWriter.h"
#include "tiling/vector/VectorGrid.h"
#include "tiling/vector/VectorJob.h"

namespace orvo::tiling {

/// The opened layer, its grid, and the writer of its tiles.
class VectorPlan {
  public:
    /// Fails with UsageError where the job cannot be done, with RuntimeError where the layer cannot be read.
    explicit VectorPlan(const VectorJob& job);

    gdal::VectorLayer& Layer() { return *layer_; }
    VectorGrid& Grid() { return grid_; }
    PieceWriter& Writer() { return *writer_; }
    const AddedFields& Added() const { return added_; }
    /// The name of the coordinate system, see ReferenceSystem.h.
    const std::string& System() const { return system_; }
    /// What the user should know beforehand.
    const std::vector<std::string>& Notices() const { return notices_; }
    /// The job with its source and grid, as job.json keeps it.
    Json JobAsJson() const;

  private:
    AddedFields FreeFields();
    void NoteGrid();

    const VectorJob& job_;
    std::vector<std::string> notices_;
    std::shared_ptr<gdal::VectorLayer> layer_;
    VectorGrid grid_;
    AddedFields added_;
    std::string system_;
    std::unique_ptr<PieceWriter> writer_;
};

/// The job that a job.json tells of, without its folder. Fails with Json::exception where it tells of none.
VectorJob VectorJobFromJson(const Json& job);

}  // namespace orvo::tiling
