// Rasters whose rows are found one after the other.
#pragma once

#include <map>
#include <string>

class GDALDataset;

namespace orvo::gdal {

/// In a text grid the place of a row is known once all rows above it have been read. Where one is missing,
/// the library's search for a later one takes time that doubles with each row between them; so rows are read
/// in order here, and what lies behind a missing one is not looked for.
class OrderedRows {
  public:
    /// Makes sure that the rows above `row` are there. Nothing to do for other formats. Fails with number 57.
    /// @param file what the dataset was opened from
    void Reach(GDALDataset& dataset, const std::string& file, int row);
    /// The dataset is opened anew.
    void Restart() { reached_ = 0; }

  private:
    struct Missing {
        int row;
        std::string reason;
    };
    int reached_ = 0;                         ///< rows of the open dataset whose places are known
    std::map<std::string, Missing> missing_;  ///< by file
};

}  // namespace orvo::gdal
