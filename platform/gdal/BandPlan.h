// Which bands of a dataset make its picture.
#pragma once

#include <gdal.h>

#include <optional>
#include <vector>

#include "platform/gdal/Pixels.h"

class GDALDataset;

namespace orvo::gdal {

/// One colour band is a grey or an index into the palette. Three are red, green and blue: the bands
/// interpreted so, else the first three that are not alpha. Fewer than three show the first. Band numbers
/// count from 1.
struct BandPlan {
    std::vector<int> colours;
    std::vector<std::optional<double>> nodata;  ///< of each colour band
    GDALDataType type = GDT_Byte;               ///< holds every colour band's cells
    int alpha = 0;                              ///< 0 for none
    bool mask = false;                          ///< the dataset has a mask that is neither alpha nor nodata
    Palette palette;                            ///< empty without one

    /// Whether every colour band names a value that stands for no data.
    bool HasNodata() const;
};

BandPlan PlanBands(GDALDataset& dataset);

}  // namespace orvo::gdal
