// Geometries from anywhere: any bytes are read, related, cut and written, or refused with a text.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "platform/memory/Envelope.h"
#include "tiling/vector/geometry/Geometry.h"
#include "tiling/vector/geometry/Split.h"

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

void Exercise(const std::shared_ptr<orvo::geos::Geometry>& geometry) {
    using orvo::GeometryType;
    auto tile = std::make_shared<orvo::memory::Envelope>();
    tile->XMin(0);
    tile->YMin(0);
    tile->XMax(10);
    tile->YMax(10);
    const auto again = orvo::geos::Geometry::FromWkb(geometry->ToWkb());
    Require(again->GeometryType() == geometry->GeometryType() && again->IsEmpty() == geometry->IsEmpty());
    if (geometry->GeometryType() == GeometryType::Other) return;
    geometry->Within(tile);
    geometry->Crosses(tile);
    geometry->Overlaps(tile);
    const orvo::geos::TileGrid grid{{{0, 5}, {5, 10}, {10, 15}}, {{0, 5}, {5, 10}, {10, 15}}};
    orvo::geos::ForEachTile(geometry, grid, [](std::size_t, std::size_t, const auto&) {});
    geometry->Clip(tile);
    const orvo::geos::Bounds bounds{0, 0, 10, 10};
    Require(geometry->IsEmpty() || bounds.Holds(geometry->Extent()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        Exercise(orvo::geos::Geometry::FromWkb(std::span(data, size)));
    } catch (const orvo::RuntimeError& error) {
        Require(!error.Description().empty());
    }
    return 0;
}
