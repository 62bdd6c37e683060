// What a raster says of itself beside its cells.
#pragma once

class GDALDataset;
class GDALRasterBand;

namespace orvo::gdal {

/// Copies nodata, colour table, interpretation, description, unit, scale and offset, categories, and metadata
/// but for those that were counted over the whole layer.
void CopyFacts(GDALRasterBand& from, GDALRasterBand& to);
void CopyMetadata(GDALDataset& from, GDALDataset& to);

}  // namespace orvo::gdal
