// Finding out what a raster format keeps, by writing and reading a sample.
#pragma once

#include <string>
#include <vector>

class GDALDataset;

namespace orvo::gdal {

/// A folder for files in the making, on a disk or in the library's memory. Goes with this object, and all
/// that is in it.
class FolderOfFiles {
  public:
    /// Fails with number 75.
    explicit FolderOfFiles(std::string path);
    ~FolderOfFiles();
    FolderOfFiles(const FolderOfFiles&) = delete;
    FolderOfFiles& operator=(const FolderOfFiles&) = delete;

    /// Of the files in it, in alphabetical order. Fails with number 440 where it holds folders.
    std::vector<std::string> Names() const;

  private:
    std::string path_;
};

/// Fills all bands with values that show losses: all bits of whole numbers, long fractions.
void FillHard(GDALDataset& sample);

/// How a file compares with what was written into it.
struct Likeness {
    bool sameForm = false;    ///< as many bands, of types that hold the original's
    bool sameValues = false;  ///< in every cell
    bool ownPlace = false;    ///< the file itself, without others beside it, says where it lies
    std::string lost;         ///< what else is not there, for people; empty for nothing
};

Likeness Compare(GDALDataset& original, const std::string& file);

}  // namespace orvo::gdal
