// What became of each geometry of a layer, part by part of the grid.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tiling/output/JsonText.h"

namespace orvo::tiling {

/// Of one geometry. A feature has one, or one for each member of a collection.
struct Placement {
    bool isPlaced = false;   ///< some tile has a piece of it
    bool isLeftOut = false;  ///< it covers a tile that gets nothing from it, as --strict asks for
    std::string failure;     ///< shown, or the geometry's own; empty for none
    bool operator==(const Placement&) const = default;
};

/// The placements of a layer's geometries, in the order of the layer; few bytes where neighbours have the
/// same.
class Placements {
  public:
    void Add(const Placement& placement);
    /// The next one, from the first on. Fails with RunError where there is none.
    Placement Next();

    /// A text of counts and letters, and the failures by the number of the geometry.
    Json AsJson() const;
    /// Fails with Json::exception, or with RunError, where these are none.
    static Placements FromJson(const Json& json);

  private:
    struct Run {
        char letter;  ///< bits: 1 placed, 2 left out, from 'a' on
        std::int64_t count;
    };
    std::vector<Run> runs_;
    std::map<std::int64_t, std::string> failures_;
    std::int64_t count_ = 0;
    std::size_t run_ = 0;  ///< where reading stands
    std::int64_t inRun_ = 0, read_ = 0;
};

}  // namespace orvo::tiling
