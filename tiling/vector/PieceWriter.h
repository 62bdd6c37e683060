// Pieces of features as records, and records as tile files.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/gdal/VectorLayer.h"
#include "tiling/output/GeoJson.h"
#include "tiling/output/JsonText.h"
#include "tiling/vector/geometry/Geometry.h"

namespace orvo::tiling {

class PieceWriter {
  public:
    virtual ~PieceWriter() = default;
    /// Of the tile files, without dot.
    virtual std::string Extension() const = 0;
    /// Whether other files may come with a tile's.
    virtual bool WritesSideFiles() const = 0;
    /// The pieces that follow are this feature's.
    virtual void Begin(const OGRFeature& feature) = 0;
    /// A geometry of the current feature, before it is cut. What the files are like depends on all of them,
    /// wherever their pieces go.
    /// @param wkb the same as ISO WKB @param isCut whether it lies in more than one tile
    virtual void Expect(const geos::Geometry& /*whole*/, const std::vector<unsigned char>& /*wkb*/,
                        bool /*isCut*/) {}
    /// A piece of the current feature as a record; valid until the next call.
    virtual const std::string& Record(const std::string& tile, const geos::Geometry& piece) = 0;
    /// Fails where the format cannot hold what the records hold. Called once, before the first file.
    virtual void CheckRecords() const {}
    /// Tries what the records hold in the format. Called once, before the first file.
    /// @param folder for files that nobody needs afterwards
    virtual void Prepare(const std::string& /*folder*/) {}
    /// Writes the file of a tile, and those that go with it. Fails with RunError or RuntimeError.
    virtual void Write(const std::string& path, const std::string& tile, const RecordSource& records) = 0;
    /// What the files do not hold as the layer does, so far.
    virtual std::vector<std::string> Notices() const { return {}; }
    /// The same as data, for another writer of the same layer, who then knows of both.
    virtual Json Findings() const { return Json::object(); }
    /// Fails with Json::exception where these are none.
    virtual void AddFindings(const Json& /*findings*/) {}
};

/// Names of the fields that pieces get beside the source's own.
struct AddedFields {
    std::string id;      ///< the source's feature id
    std::string tile;    ///< the tile's name
    std::string reason;  ///< of skipped features
};

/// @param format name or extension; GeoJSON is written by ourselves, the rest by the library
/// @param system the name of the coordinate system, see ReferenceSystem.h
/// The layer must outlive the writer. Fails with UsageError where the format is not known.
std::unique_ptr<PieceWriter> MakePieceWriter(const std::string& format, const gdal::VectorLayer& layer,
                                             const AddedFields& added, const std::string& system);

}  // namespace orvo::tiling
