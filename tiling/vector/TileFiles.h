// The files of a vector run's tiles.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tiling/output/PlacedTile.h"
#include "tiling/output/WorkFolder.h"
#include "tiling/vector/PieceWriter.h"
#include "tiling/vector/VectorGrid.h"
#include "tiling/vector/VectorSummary.h"

namespace orvo::tiling {

/// Writes tiles, and knows those that are there: by their numbers, row by row from the south-west.
class TileFiles {
  public:
    struct Entry {
        std::vector<std::string> files;  ///< the tile, then those that go with it
        std::int64_t pieces = 0;
    };

    /// Both must outlive this object.
    TileFiles(VectorGrid& grid, PieceWriter& writer) : grid_(grid), writer_(writer) {}

    std::string NameOf(std::int64_t number) const;
    /// Tiles of an earlier run, by their names, with the files that go with them: these are not written
    /// again.
    void Keep(std::map<std::string, std::vector<std::string>> there) { kept_ = std::move(there); }
    /// Writes a tile into the folder and publishes it. @return why it failed; empty where it is there
    std::string Write(std::int64_t number, std::int64_t pieces, const RecordSource& records,
                      WorkFolder& work);
    /// Adds a tile that is there.
    void Add(std::int64_t number, Entry entry) { tiles_[number] = std::move(entry); }
    /// Forgets the tiles that somebody has removed from the folder. @return their numbers
    std::vector<std::int64_t> Vanished(const std::string& folder);

    const std::map<std::int64_t, Entry>& All() const { return tiles_; }
    /// The tiles that are there, as the index has them. The list refers to this object.
    TileList List() const;
    std::vector<std::string> Companions() const;

  private:
    std::string IdOf(std::int64_t number) const;
    PlacedTile Placed(std::int64_t number, const std::string& name) const;
    Long ColumnOf(std::int64_t number) const;
    Long RowOf(std::int64_t number) const;

    VectorGrid& grid_;
    PieceWriter& writer_;
    std::map<std::string, std::vector<std::string>> kept_;
    std::map<std::int64_t, Entry> tiles_;
};

}  // namespace orvo::tiling
