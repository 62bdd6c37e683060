// Every tile of a run: what has become of it, and its files.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tiling/output/TileNames.h"
#include "tiling/output/WorkFolder.h"
#include "tiling/raster/RasterGrid.h"
#include "tiling/raster/TileMaker.h"

namespace orvo::tiling {

/// Tiles are numbered by the cells that a run visits, row by row. Of each it keeps some bytes only: names and
/// places are worked out from the grid.
class TileAccount {
  public:
    enum class State : unsigned char { NotReached, Written, Failed, Blank, Outside };

    /// All must outlive the account. @param extension of the tiles, without dot
    /// Fails with UsageError where the pattern gives two tiles one name.
    TileAccount(const RasterJob& job, const RasterGrid& grid, std::string extension);

    std::int64_t Count() const { return grid_.Visited().Count(); }
    std::int64_t NumberOf(std::int64_t column, std::int64_t row) const;
    State StateOf(std::int64_t tile) const { return states_[static_cast<std::size_t>(tile)]; }
    void Set(std::int64_t tile, State state) { states_[static_cast<std::size_t>(tile)] = state; }
    /// The numbers that people see, from 1 on.
    std::int64_t ColumnOf(std::int64_t tile) const {
        return tile % grid_.Visited().columns + grid_.Visited().column + 1;
    }
    std::int64_t RowOf(std::int64_t tile) const {
        return tile / grid_.Visited().columns + grid_.Visited().row + 1;
    }

    /// Relative to the output folder, without extension.
    std::string StemOf(std::int64_t tile) const;
    std::string NameOf(std::int64_t tile) const { return StemOf(tile) + "." + extension_; }
    const std::string& Pattern() const { return pattern_; }
    const std::string& Source() const { return source_; }

    /// Counts tiles of an earlier run as written.
    /// @param there names of tiles, each with the files that go with it
    void Keep(const std::map<std::string, std::vector<std::string>>& there);
    /// The names of a written tile and of what goes with it.
    std::vector<std::string> FilesOf(std::int64_t tile) const;
    /// Windows of the tiles that do not show their whole cells.
    const std::map<std::int64_t, raster::TileWindow>& Windows() const { return windows_; }
    /// Which of so many parts makes a tile.
    int PartOf(std::int64_t tile, int parts) const;
    /// A tile that is kept shows this.
    void Place(std::int64_t tile, const raster::TileWindow& window);
    /// Gives a tile's image and what goes with it their names. Fails with RunError.
    /// @param image path of the file @param besides the image are written, too
    void Publish(std::int64_t tile, const std::string& image, const MadeTile& made, WorkFolder& work,
                 const std::vector<gdal::MadeFile>& besides);

    /// What is there and where it lies.
    PlacedTile TileAt(std::int64_t tile) const;
    TileList Tiles() const;
    /// The files that go with the tiles, in the tiles' order.
    std::vector<std::string> Companions() const;
    /// Tiles that are in the account, and no longer in the folder, become failures.
    std::vector<std::int64_t> Vanished(const std::string& folder);
    std::int64_t CountOf(State state) const;
    /// Tiles that show another number of pixels than the layer has there.
    std::int64_t Resampled() const;
    /// Clipped tiles whose pixels do not fill their rectangles exactly.
    std::int64_t Shifted() const;

  private:
    void RequireOneNameEach() const;
    unsigned short SetOf(const std::vector<std::string>& suffixes);
    raster::TileWindow WholeWindow(std::int64_t tile) const;
    Rectangle EnvelopeOf(std::int64_t tile) const;

    const RasterJob& job_;
    const RasterGrid& grid_;
    std::string extension_, pattern_, source_;
    TileNames names_;
    std::vector<State> states_;
    std::vector<unsigned short> sets_;                    ///< which files go with a tile
    std::vector<std::vector<std::string>> suffixes_;      ///< behind the stem, of the files in each set
    std::map<std::int64_t, raster::TileWindow> windows_;  ///< of tiles that do not show a whole cell
};

}  // namespace orvo::tiling
