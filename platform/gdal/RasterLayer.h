// Raster layers over the files, databases and subdatasets that the raster library opens.
#pragma once

#include <array>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/Raster.h"

class GDALDataset;

namespace orvo::gdal {

/// What a layer is read from.
struct RasterSource {
    std::vector<std::string> names;  ///< one raster, or several that are taken as one mosaic
    std::vector<int> bands{};        ///< from 1 on, in the order in which they are taken; empty for all
};

/// A raster that is opened once and stays open as long as the object lives: layer, raster and dataset in one.
///
/// The raster lies straight: north is up, columns run east. One without georeference lies at (0, 0) to
/// (columns, rows) with cells of 1. Not for use from several threads.
class RasterLayer final : public IRasterLayer,
                          public IRaster,
                          public IRasterDataset,
                          public std::enable_shared_from_this<RasterLayer> {
  public:
    ~RasterLayer() override;
    RasterLayer(const RasterLayer&) = delete;
    RasterLayer& operator=(const RasterLayer&) = delete;

    std::string FilePath() override { return filePath_; }
    std::shared_ptr<IRaster> Raster() override { return shared_from_this(); }
    bool IsInGeodatabase() override { return contained_; }
    std::shared_ptr<IEnvelope> Extent() override;
    Long Width() override { return columns_; }
    Long Height() override { return rows_; }
    Point MeanCellSize() override { return {transform_[1], -transform_[5]}; }
    std::shared_ptr<IRasterDataset> RasterDataset() override { return shared_from_this(); }
    std::string FormatName() override { return format_; }

    /// Owned by the layer; valid until it is opened anew. Fails with number 57 where that was not possible.
    GDALDataset& Dataset() const;
    /// The same source for reading many whole rows: an uncompressed TIFF is then read past the block cache,
    /// whose upkeep costs more than the reading. Valid and failing like Dataset().
    GDALDataset& DatasetForRows();
    /// Opens the source anew after a failed read, for the library may then hold cells that it never read.
    void Reopen();
    /// Held by who reads, where several threads do, and while a dataset that refers to this one is written or
    /// destroyed; whoever opens anew has it too.
    std::mutex& Reading() const { return reading_; }
    /// Left edge, cell width, 0, top edge, 0, minus cell height, in map units.
    const std::array<double, 6>& GeoTransform() const { return transform_; }
    bool IsGeoreferenced() const { return georeferenced_; }
    /// As WKT; empty where it is not known.
    std::string SpatialReference() const;
    int BandCount() const { return bands_; }
    /// The library's name of a band's cell type, such as "Byte" or "Float32". @param band counts from 1
    std::string BandType(int band) const;

  private:
    friend std::shared_ptr<RasterLayer> OpenRasterLayer(const RasterSource& source);
    explicit RasterLayer(RasterSource source);

    void Locate();
    void NameSource();
    std::unique_ptr<GDALDataset> OpenAgain() const;

    RasterSource source_;
    std::unique_ptr<GDALDataset> dataset_;
    std::unique_ptr<GDALDataset> forRows_;
    bool triedRows_ = false;
    std::string name_;  // of the first source, as it was opened
    std::string filePath_;
    std::string format_;
    Long columns_ = 0;
    Long rows_ = 0;
    int bands_ = 0;
    std::array<double, 6> transform_{};
    bool georeferenced_ = false;
    bool contained_ = false;
    mutable std::mutex reading_;
};

/// Opens raster files, or rasters inside containers by the names that the library gives them. Several must
/// be alike in bands, types and coordinate system; a later one lies above an earlier one. Chosen bands are a
/// grey, or red, green and blue, whatever they were. Fails with number 53 for a missing file and 440 else;
/// the text names the raster and the remedy.
std::shared_ptr<RasterLayer> OpenRasterLayer(const RasterSource& source);
inline std::shared_ptr<RasterLayer> OpenRasterLayer(const std::string& name) {
    return OpenRasterLayer(RasterSource{{name}});
}

}  // namespace orvo::gdal
