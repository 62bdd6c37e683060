// One tile's features as a file in any vector format that the library can create.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdal/ErrorCapture.h"

class GDALDataset;
class GDALDriver;
class OGRFeature;
class OGRFeatureDefn;
class OGRLayer;
class OGRSpatialReference;

namespace orvo::gdal {

struct VectorFormat {
    std::string name;         ///< the library's, for example "ESRI Shapefile"
    std::string extension;    ///< without dot
    bool mixesKinds = false;  ///< points, lines and areas may stand in one file
};

/// @param text a name or an extension, whatever the case. Fails with number 440 and names the formats that
/// there are.
VectorFormat FindVectorFormat(const std::string& text);

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
    /// Writes what is left; fails with number 57 where not all features got into the file.
    void Close();
    /// What did not go into the file as it was, such as names that were cut short.
    const gdal::Warnings& Warnings() const { return warnings_; }

  private:
    void CreateFields();

    const TileSchema& schema_;
    std::string path_;
    std::string name_;
    std::unique_ptr<GDALDataset> dataset_;
    OGRLayer* layer_ = nullptr;  ///< of the dataset
    std::vector<int> targets_;   ///< of the source's fields; −1 for none
    std::unique_ptr<OGRFeature> source_;
    int idTarget_ = -1;
    int tileTarget_ = -1;
    std::int64_t added_ = 0;
    gdal::Warnings warnings_;
};

}  // namespace orvo::gdal
