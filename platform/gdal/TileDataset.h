// One tile's features as a file in any vector format that the library can create.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdal/CheckedFiles.h"
#include "platform/gdal/ErrorCapture.h"
#include "platform/gdal/ReadBack.h"
#include "platform/gdal/ScopedOption.h"
#include "platform/gdal/VectorFormat.h"

class GDALDataset;
class OGRFeature;
class OGRFeatureDefn;
class OGRLayer;
class OGRSpatialReference;

namespace orvo::gdal {

/// What all tiles of a run have in common.
struct TileSchema {
    VectorFormat format;
    OGRFeatureDefn* fields = nullptr;                   ///< the source's, shared by its count of references
    OGRSpatialReference* system = nullptr;              ///< likewise
    bool points = false, lines = false, areas = false;  ///< the kinds that occur
    bool multi = false, heights = false;                ///< some geometry is made of parts, has heights
    std::array<double, 4> area{};                       ///< where all tiles lie: xMin, yMin, xMax, yMax
    std::string idField;                                ///< gets the source's feature id
    std::string tileField;                              ///< gets the tile's name
    std::string date;  ///< for formats that note when they were written, ISO 8601; empty for now
    // What the format needs so that values stay what they are, by the fields' numbers in the source.
    std::set<int> asText;
    std::map<int, std::string> renamed;
};

class TileDataset {
  public:
    /// Creates the file, and those that go with it, for one layer of that name. Fails with number 440 where
    /// the format cannot hold the fields or the geometries.
    TileDataset(const std::string& path, const std::string& name, const TileSchema& schema);
    ~TileDataset();
    TileDataset(const TileDataset&) = delete;
    TileDataset& operator=(const TileDataset&) = delete;

    /// @param attributes as WriteAttributes gave them
    void Add(std::string_view attributes, std::int64_t id, std::span<const unsigned char> wkb);
    /// Writes what is left and reads all back. Fails with number 57 where a write failed, or not all features
    /// got into the file.
    void Close();
    /// What the library said while it wrote, such as names that were cut short.
    const Warnings& Warned() const { return warnings_; }
    /// Known once the file is closed.
    const Changes& Changed() const { return changes_; }

  private:
    void CreateFields();
    int CreateField(OGRFieldDefn& field, const std::set<int>& taken);
    void SetFields(OGRFeature& feature, std::int64_t id);
    [[noreturn]] void FailToCreate(const ErrorCapture& errors) const;
    [[noreturn]] void FailToWrite(const std::string& reason) const;

    const TileSchema& schema_;
    ScopedOption date_;
    ScopedOption oneThread_{"GDAL_NUM_THREADS", "1"};  ///< some formats would write on several
    std::string path_;
    std::string name_;
    CheckedFiles files_;
    std::unique_ptr<GDALDataset> dataset_;
    OGRLayer* layer_ = nullptr;  ///< of the dataset
    std::vector<int> targets_;   ///< numbers of its fields: the source's, then the id's and the tile's
    std::unique_ptr<OGRFeature> source_;
    WrittenContent content_;
    gdal::Warnings warnings_;
    Changes changes_;
};

}  // namespace orvo::gdal
