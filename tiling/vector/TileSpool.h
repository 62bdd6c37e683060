// The records of all tiles while the layer is read: in memory as long as they fit, else in a file.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvo::tiling {

class TileSpool {
  public:
    /// @param folder where the file goes; it has no name there, so nothing is left of it
    /// @param memory bytes to hold before they are written to the file
    TileSpool(std::string folder, std::size_t memory) : folder_(std::move(folder)), memory_(memory) {}
    ~TileSpool();
    TileSpool(const TileSpool&) = delete;
    TileSpool& operator=(const TileSpool&) = delete;

    /// Fails with RunError where the disk is full.
    void Add(std::int64_t tile, std::string_view record);
    /// How many records each tile has, by rising number.
    std::map<std::int64_t, std::int64_t> Counts() const;
    /// Hands out a tile's records in the order they came, in chunks of whole ones.
    void Read(std::int64_t tile, const std::function<void(std::string_view chunk)>& take) const;

  private:
    struct Chunk {
        std::int64_t offset;
        std::size_t size;
    };
    struct Bucket {
        std::string held;
        std::vector<Chunk> chunks;  ///< in the file, before what is held
        std::int64_t count = 0;
    };
    void Spill();
    void Open();

    std::string folder_;
    std::size_t memory_;
    std::size_t held_ = 0;
    std::unordered_map<std::int64_t, Bucket> buckets_;
    int file_ = -1;
    std::int64_t end_ = 0;
};

}  // namespace orvo::tiling
